#include "zosmbios/tstructuretable.h"

#include <cstring>

namespace nQUENRA1400::nZOSMBIOS_1_1 {

size_t tStructureTable::stringSetOf(tStructureOffset structure) const noexcept {
  const size_t lengthByte = size_t{structure} + 1;
  return lengthByte < bytes_.size() ? structure + bytes_[lengthByte] : bytes_.size();
}

std::optional<tStructureOffset> tStructureTable::firstStructure() const noexcept {
  return bytes_.empty() ? std::nullopt : std::optional<tStructureOffset>(0);
}

std::optional<tStructureOffset> tStructureTable::nextStructure(
    tStructureOffset structure) const noexcept {
  size_t position = stringSetOf(structure);
  // Two NULs with a byte after them: fewer bytes begin no structure.
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
  tStructuresOfType structures(*this, type);
  std::optional<tStructureOffset> structure = structures.next();
  for (; structure && instance != 0; --instance) {
    structure = structures.next();
  }
  return structure;
}

std::optional<tStructureOffset> tStructuresOfType::next() noexcept {
  while (position_) {
    const tStructureOffset structure = *position_;
    position_ = table_.nextStructure(structure);
    if (table_.bytes()[structure] == type_) {
      return structure;
    }
  }
  return std::nullopt;
}

}  // namespace nQUENRA1400::nZOSMBIOS_1_1
