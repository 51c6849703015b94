#include "zosmbios/tstructuretable.h"

#include <cstring>

namespace nQUENRA1400::nZOSMBIOS_1_1 {
namespace {

template <class Visit>
void forEachStructure(const tStructureTable& table, Visit visit) noexcept {
  for (auto structure = table.firstStructure(); structure;
       structure = table.nextStructure(*structure)) {
    visit(table.bytes()[*structure], *structure);
  }
}

}  // namespace

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

// ---- tStructureIndex ----

void tStructureIndex::setOffsetAt(size_t position, tStructureOffset offset) noexcept {
  std::memcpy(offsets_.get() + position * sizeof offset, &offset, sizeof offset);
}

void tStructureIndex::clear() noexcept {
  usable_ = false;
  firstOfType_ = {};
  offsets_.reset();
}

void tStructureIndex::build(const tStructureTable& table) noexcept {
  clear();
  // At most one structure in two bytes: the counts fit in 32 bits like the size of the table.
  std::array<uint32_t, kTypes> counts{};
  forEachStructure(table, [&counts](uint8_t type, tStructureOffset) noexcept { ++counts[type]; });
  for (uint32_t type = 0; type < kTypes; ++type) {
    firstOfType_[type + 1] = firstOfType_[type] + counts[type];
  }
  nZOAPALS100::tStatus status;
  offsets_ = nZOAPAL000::allocateBytes(firstOfType_[kTypes] * sizeof(tStructureOffset), status);
  if (offsets_ == nullptr) {
    clear();
    return;
  }
  std::array<uint32_t, kTypes> placed{};
  forEachStructure(table, [this, &placed](uint8_t type, tStructureOffset offset) noexcept {
    setOffsetAt(size_t{firstOfType_[type]} + placed[type]++, offset);
  });
  usable_ = true;
}

}  // namespace nQUENRA1400::nZOSMBIOS_1_1
