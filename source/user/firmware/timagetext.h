// The text of a firmware image and how it is searched.
#ifndef SOURCE_USER_FIRMWARE_TIMAGETEXT_H
#define SOURCE_USER_FIRMWARE_TIMAGETEXT_H

#include <algorithm>
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
                            size_t anchor = 0) const noexcept {
    const size_t end = std::min(to, size_);
    const auto byte = static_cast<uint8_t>(pattern[anchor]);
    for (size_t at = from; at < end; ++at) {
      at = static_cast<size_t>(kernels_.findByteOrNul(bytes_ + at, bytes_ + end, byte) - bytes_);
      if (at == end || bytes_[at] == '\0') {
        break;
      }
      if (at - from < anchor) {
        continue;  // This occurrence would begin before `from`.
      }
      const size_t start = at - anchor;
      if (between(start, std::min(start + pattern.size(), end)) == pattern) {
        return start;
      }
    }
    return kNotFound;
  }

  // Returns the position of the first NUL at or after `from`; the size if there is none.
  [[nodiscard]] size_t findEnd(size_t from) const noexcept {
    return static_cast<size_t>(kernels_.findByteOrNul(bytes_ + from, bytes_ + size_, '\0') -
                               bytes_);
  }

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

// Searches an image for one pattern from positions that never decrease. It remembers its last result, so
// that all searches together read the image once.
class tForwardSearch {
 public:
  // The anchor is that of tImageText::find.
  constexpr explicit tForwardSearch(std::string_view pattern, size_t anchor = 0) noexcept
      : pattern_(pattern), anchor_(anchor) {}

  // Returns the start of the first occurrence in [from, to), or tImageText::kNotFound.
  [[nodiscard]] size_t find(const tImageText& text, size_t from,
                            size_t to = tImageText::kNotFound) noexcept {
    to = std::min(to, text.size());
    if (found_ == tImageText::kNotFound || found_ < from) {
      const size_t unread = std::max(from, read_);
      found_ = text.find(pattern_, unread, to, anchor_);
      // An occurrence that ends beyond `to` may begin in its last bytes.
      read_ = found_ != tImageText::kNotFound
                  ? found_ + 1
                  : std::max(unread, to - std::min(to, pattern_.size() - 1));
    }
    const bool isInside = found_ != tImageText::kNotFound && found_ + pattern_.size() <= to;
    return isInside ? found_ : tImageText::kNotFound;
  }

 private:
  std::string_view pattern_;
  size_t anchor_;
  size_t found_ = tImageText::kNotFound;
  size_t read_ = 0;  // Before this position nothing is left to be found but `found_`.
};

}  // namespace nQUENRA1400

#endif
