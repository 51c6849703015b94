#ifndef SOURCE_USER_FIRMWARE_TIMAGETEXT_H
#define SOURCE_USER_FIRMWARE_TIMAGETEXT_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "source/user/firmware/decoding/kernels.h"

namespace nQUENRA1400 {

// The bytes of an image. Searches end at the first NUL, or where the bytes end; a payload may go on
// behind a NUL.
class tImageText {
 public:
  static constexpr size_t kNotFound = SIZE_MAX;

  tImageText(const void* bytes, size_t size, const nFirmwareDecoding::tKernels& kernels) noexcept
      : bytes_(static_cast<const uint8_t*>(bytes)), size_(size), kernels_(kernels) {}

  [[nodiscard]] const uint8_t* bytes() const noexcept { return bytes_; }
  [[nodiscard]] size_t size() const noexcept { return size_; }

  // Where a text that ends in two colons first occurs at or after a position. Runs over payloads at
  // the speed of memory: they have no colons.
  [[nodiscard]] size_t findKey(std::string_view key, size_t from) const noexcept;

  // Where any text first occurs at or after a position; for the short ways inside a header.
  [[nodiscard]] size_t find(std::string_view pattern, size_t from) const noexcept;

  // From a position to another one; to the end of the text for kNotFound.
  [[nodiscard]] std::string_view between(size_t from, size_t to) const noexcept;

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
