#include "source/user/firmware/timagetext.h"

#include <algorithm>

namespace nQUENRA1400 {

size_t tImageText::findKey(std::string_view key, size_t from) const noexcept {
  constexpr size_t kColons = 2;  // that end a key
  const size_t nameLength = key.size() - kColons;
  const uint8_t* const end = bytes_ + size_;
  const uint8_t* const earliest = bytes_ + std::min(from + nameLength, size_);
  for (const uint8_t* at = bytes_ + std::min(from, size_);; ++at) {
    at = kernels_.findColonOrNul(at, end);
    if (at == end || *at == '\0') {
      return kNotFound;
    }
    if (at < earliest || static_cast<size_t>(end - at) < kColons) {
      continue;
    }
    const auto start = static_cast<size_t>(at - bytes_) - nameLength;
    if (std::string_view(characters() + start, key.size()) == key) {
      return start;
    }
  }
}

size_t tImageText::find(std::string_view pattern, size_t from) const noexcept {
  for (size_t at = from; at < size_ && bytes_[at] != '\0'; ++at) {
    const size_t length = std::min(pattern.size(), size_ - at);
    if (std::string_view(characters() + at, length) == pattern) {
      return at;
    }
  }
  return kNotFound;
}

std::string_view tImageText::between(size_t from, size_t to) const noexcept {
  const std::string_view rest(characters() + from, std::min(to, size_) - from);
  return to == kNotFound ? rest.substr(0, rest.find('\0')) : rest;
}

}  // namespace nQUENRA1400
