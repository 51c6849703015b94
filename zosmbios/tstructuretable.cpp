#include "zosmbios/tstructuretable.h"

#include <cstring>

namespace nQUENRA1400::nZOSMBIOS_1_1 {

size_t tStructureTable::stringSetOf(tStructureOffset structure) const noexcept {
  const size_t lengthByte = size_t{structure} + 1;
  return lengthByte < bytes_.size() ? structure + bytes_[lengthByte] : bytes_.size();
}

std::optional<tStructureOffset> tStructureTable::nextStructure(
    tStructureOffset structure) const noexcept {
  size_t position = stringSetOf(structure);
  // Two NULs, and a byte behind them.
  while (position + 2 < bytes_.size()) {
    const void* const nul = std::memchr(bytes_.data() + position, 0, bytes_.size() - 2 - position);
    if (nul == nullptr) {
      return std::nullopt;
    }
    position = static_cast<size_t>(static_cast<const uint8_t*>(nul) - bytes_.data());
    if (bytes_[position + 1] == 0) {
      return static_cast<tStructureOffset>(position + 2);
    }
    ++position;
  }
  return std::nullopt;
}

std::optional<tStructureOffset> tStructureTable::findStructure(uint8_t type,
                                                               uint32_t instance) const noexcept {
  if (bytes_.empty()) {
    return std::nullopt;
  }
  std::optional<tStructureOffset> structure = 0;
  for (uint32_t count = 0; structure; structure = nextStructure(*structure)) {
    if (bytes_[*structure] == type && count++ == instance) {
      return structure;
    }
  }
  return std::nullopt;
}

}  // namespace nQUENRA1400::nZOSMBIOS_1_1
