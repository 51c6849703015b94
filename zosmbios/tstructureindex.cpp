#include "zosmbios/tstructureindex.h"

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

tStructureOffset tStructureIndex::offsetAt(size_t position) const noexcept {
  tStructureOffset offset;
  std::memcpy(&offset, offsets_.get() + position * sizeof offset, sizeof offset);
  return offset;
}

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

std::optional<tStructureOffset> tStructureIndex::findStructure(uint8_t type,
                                                               uint32_t instance) const noexcept {
  const uint32_t first = firstOfType_[type];
  const uint32_t count = firstOfType_[type + 1u] - first;
  return instance < count
             ? std::optional<tStructureOffset>(offsetAt(size_t{first} + size_t{instance}))
             : std::nullopt;
}

}  // namespace nQUENRA1400::nZOSMBIOS_1_1
