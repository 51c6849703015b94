#ifndef SOURCE_USER_FIRMWARE_TIMAGETEXT_H
#define SOURCE_USER_FIRMWARE_TIMAGETEXT_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "source/user/firmware/decoding/kernels.h"

namespace nQUENRA1400 {

// The bytes of an image. Searches stop at the first NUL, or at the end of the bytes; a payload may
// continue past a NUL.
class tImageText {
 public:
  static constexpr size_t kNotFound = SIZE_MAX;

  tImageText(const void* bytes, size_t size, const nFirmwareDecoding::tKernels& kernels) noexcept
      : bytes_(static_cast<const uint8_t*>(bytes)), size_(size), kernels_(kernels) {}

  [[nodiscard]] const uint8_t* bytes() const noexcept { return bytes_; }
  [[nodiscard]] size_t size() const noexcept { return size_; }

  // Returns the start of the first occurrence of a pattern in [from, to), or kNotFound. The search
  // runs from one `pattern[anchor]` to the next at the speed of memory, so a rare byte is a good
  // anchor.
  [[nodiscard]] size_t find(std::string_view pattern, size_t from, size_t to = kNotFound,
                            size_t anchor = 0) const noexcept;

  // Returns the position of the first NUL at or after `from`; the size if there is none.
  [[nodiscard]] size_t findEnd(size_t from) const noexcept;

  // Returns the characters in [from, to), which must lie in the image.
  [[nodiscard]] std::string_view between(size_t from, size_t to) const noexcept {
    return {characters() + from, to - from};
  }

 private:
  [[nodiscard]] const char* characters() const noexcept {
    return reinterpret_cast<const char*>(bytes_);
  }

  const uint8_t* bytes_;
  size_t size_;
  const nFirmwareDecoding::tKernels& kernels_;
};

}  // namespace nQUENRA1400

#endif
