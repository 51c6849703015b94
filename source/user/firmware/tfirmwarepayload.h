#ifndef SOURCE_USER_FIRMWARE_TFIRMWAREPAYLOAD_H
#define SOURCE_USER_FIRMWARE_TFIRMWAREPAYLOAD_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <memory>
#include <string>
#include <string_view>

namespace nQUENRA1400 {

// A text that does not change. Its copies and its parts share one memory, which the last of them frees:
// thousands of sections may have one long text in common.
class tSharedText {
 public:
  tSharedText() noexcept = default;
  // Not movable: a view of memory that was moved away would be left.
  tSharedText(const tSharedText&) noexcept = default;
  tSharedText& operator=(const tSharedText&) noexcept = default;
  ~tSharedText() = default;
  // Copies the characters. Throws std::bad_alloc.
  explicit tSharedText(std::string_view characters) {
    if (!characters.empty()) {
      auto memory = std::make_shared_for_overwrite<char[]>(characters.size());
      std::copy(characters.begin(), characters.end(), memory.get());
      characters_ = {memory.get(), characters.size()};
      memory_ = std::move(memory);
    }
  }

  // Returns the part of `count` characters from `start`.
  [[nodiscard]] tSharedText part(size_t start, size_t count) const noexcept {
    tSharedText text(*this);
    text.characters_ = characters_.substr(start, count);
    return text;
  }

  [[nodiscard]] std::string_view view() const noexcept { return characters_; }
  [[nodiscard]] bool empty() const noexcept { return characters_.empty(); }
  operator std::string_view() const noexcept { return characters_; }
  operator std::string() const { return std::string(characters_); }

  friend bool operator==(const tSharedText& left, const tSharedText& right) noexcept {
    return left.view() == right.view();
  }
  friend bool operator==(const tSharedText& left, std::string_view right) noexcept {
    return left.view() == right;
  }

 private:
  std::shared_ptr<const char[]> memory_;
  std::string_view characters_;
};

// One section of a firmware image. The record owns its texts but not `data`, which is memory of the C
// heap: the owner of the list calls freePayloads before it destroys the list, on every path.
struct tFirmwarePayload {
  uint8_t* data = nullptr;
  uint32_t byteCount = 0;
  tSharedText targetDevice;
  tSharedText version;
  tSharedText targetFileName;  // empty when the section writes no file
};

// Records are added at both ends.
using tFirmwarePayloads = std::deque<tFirmwarePayload>;

// Frees the data of all records; the records stay.
inline void freePayloads(tFirmwarePayloads& payloads) noexcept {
  for (tFirmwarePayload& payload : payloads) {
    std::free(payload.data);
    payload.data = nullptr;
  }
}

}  // namespace nQUENRA1400

#endif
