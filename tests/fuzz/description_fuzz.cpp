// The description of a status under arbitrary members, with memory refused at any time.
//
// An input is a list of steps; a step is a byte for the kind of value, a byte that decides whether
// growing is refused, a byte for the length of the key and the key, and for a text a byte for its
// length and the text, for a number eight bytes. Bytes past the end of the input read as zero.
//
// After every step the buffer holds one JSON text, its NUL, zero bytes, and the marker.
#include <rapidjson/reader.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "zoapal/protons/status/descriptionwriter.h"

namespace {

using zoerr::tAppendResult;

void require(bool condition, const char* invariant) {
  if (!condition) {
    std::fprintf(stderr, "violated: %s\n", invariant);
    std::abort();
  }
}

class tInput {
 public:
  explicit tInput(std::span<const uint8_t> bytes) : bytes_(bytes) {}

  [[nodiscard]] bool isEmpty() const { return bytes_.empty(); }
  uint8_t byte() {
    const std::string taken = take(1);
    return taken.empty() ? uint8_t{0} : static_cast<uint8_t>(taken[0]);
  }
  std::string text() { return take(byte()); }
  uint64_t number() {
    const std::string taken = take(sizeof(uint64_t));
    uint64_t value = 0;
    std::memcpy(&value, taken.data(), taken.size());
    return value;
  }

 private:
  std::string take(size_t count) {
    const auto taken = bytes_.first(std::min(count, bytes_.size()));
    bytes_ = bytes_.subspan(taken.size());
    return {taken.begin(), taken.end()};
  }

  std::span<const uint8_t> bytes_;
};

// A buffer of exactly its capacity, so that the address sanitizer reports an access past it.
class tDescription {
 public:
  tDescription() : buffer_(std::make_unique<char[]>(capacity_)) {
    zoerr::resetDescription(buffer_.get(), capacity_);
  }

  // Appends, growing the buffer unless refused. An append that does not fit changes nothing.
  template <class Append>
  void append(Append append, bool refuseToGrow) {
    for (;;) {
      const std::string before = text();
      const tAppendResult result = append(buffer_.get(), capacity_);
      require(result != tAppendResult::unusable, "a description can be appended to");
      checkSound();
      if (result == tAppendResult::appended) {
        require(text().size() > before.size(), "what is appended is there");
        return;
      }
      require(text() == before, "an append beyond the capacity changes nothing");
      if (refuseToGrow) {
        return;
      }
      grow();
    }
  }

 private:
  [[nodiscard]] std::string text() const { return buffer_.get(); }

  void grow() {
    const uint32_t capacity = capacity_ + std::max(1u, capacity_ / 3);
    auto buffer = std::make_unique<char[]>(capacity);
    zoerr::replaceDescription(buffer.get(), capacity, text());
    buffer_ = std::move(buffer);
    capacity_ = capacity;
  }

  void checkSound() const {
    const std::string_view all(buffer_.get(), capacity_);
    const std::string_view json = all.substr(0, all.find('\0'));
    const std::string_view rest = all.substr(json.size());
    require(all.back() == zoerr::kDescriptionMarker, "the marker is the last byte");
    require(rest.size() >= 2 &&
                std::all_of(rest.begin(), rest.end() - 1, [](char c) { return c == '\0'; }),
            "a NUL and zeros follow the text");
    std::string copy(json);
    rapidjson::InsituStringStream stream(copy.data());
    rapidjson::BaseReaderHandler<> ignoreValues;
    require(!rapidjson::Reader().Parse<rapidjson::kParseInsituFlag>(stream, ignoreValues).IsError(),
            "the text is JSON");
  }

  uint32_t capacity_ = zoerr::kMinDescription;
  std::unique_ptr<char[]> buffer_;
};

void appendOne(tDescription& description, tInput& input) {
  const uint8_t kind = input.byte();
  const bool refuseToGrow = input.byte() % 4 == 0;
  const std::string key = input.text();
  const std::string text = kind % 6 == 0 ? input.text() : std::string();
  const uint64_t number = kind % 6 == 0 ? 0 : input.number();
  description.append(
      [&](char* buffer, uint32_t capacity) {
        switch (kind % 6) {
          case 0:
            return zoerr::appendText(buffer, capacity, key, text);
          case 1:
            return zoerr::appendInteger(buffer, capacity, key, static_cast<int32_t>(number));
          case 2:
            return zoerr::appendUnsigned(buffer, capacity, key, number);
          case 3:
            return zoerr::appendReal(buffer, capacity, key, std::bit_cast<double>(number));
          case 4:
            return zoerr::appendBoolean(buffer, capacity, key, number != 0);
          default:
            return zoerr::appendNull(buffer, capacity, key);
        }
      },
      refuseToGrow);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  tInput input({data, size});
  tDescription description;
  while (!input.isEmpty()) {
    appendOne(description, input);
  }
  return 0;
}
