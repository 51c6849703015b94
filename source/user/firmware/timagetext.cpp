#include "source/user/firmware/timagetext.h"

#include <algorithm>

namespace nQUENRA1400 {

size_t tImageText::find(std::string_view pattern, size_t from, size_t to,
                        size_t anchor) const noexcept {
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

size_t tImageText::findEnd(size_t from) const noexcept {
  return static_cast<size_t>(kernels_.findByteOrNul(bytes_ + from, bytes_ + size_, '\0') - bytes_);
}

}  // namespace nQUENRA1400
