#include "zosmbios/tstructureindex.h"

#include <cstring>

namespace nQUENRA1400::nZOSMBIOS_1_1 {
namespace {

template <class Visit>
void forEachStructure(const tStructureTable& table, Visit visit) noexcept {
  std::optional<tStructureOffset> structure;
  if (!table.bytes().empty()) {
    structure = 0;
  }
  for (; structure; structure = table.nextStructure(*structure)) {
    visit(table.bytes()[*structure], static_cast<uint16_t>(*structure));
  }
}

}  // namespace

uint16_t tStructureIndex::offsetAt(uint32_t position) const noexcept {
  uint16_t offset;
  std::memcpy(&offset, offsets_.get() + position * sizeof offset, sizeof offset);
  return offset;
}

void tStructureIndex::setOffsetAt(uint32_t position, uint16_t offset) noexcept {
  std::memcpy(offsets_.get() + position * sizeof offset, &offset, sizeof offset);
}

void tStructureIndex::clear() noexcept {
  usable_ = false;
  firstOfType_ = {};
  offsets_.reset();
}

void tStructureIndex::build(const tStructureTable& table) noexcept {
  clear();
  if (table.bytes().size() > kLargestTable) {
    return;
  }
  // At most one structure in two bytes: the counts fit 16 bits.
  std::array<uint16_t, kTypes> counts{};
  forEachStructure(table, [&counts](uint8_t type, uint16_t) noexcept { ++counts[type]; });
  for (uint32_t type = 0; type < kTypes; ++type) {
    firstOfType_[type + 1] = static_cast<uint16_t>(firstOfType_[type] + counts[type]);
  }
  nZOAPALS100::tStatus status;
  offsets_ = nZOAPAL000::allocateBytes(firstOfType_[kTypes] * sizeof(uint16_t), status);
  if (offsets_ == nullptr) {
    clear();
    return;
  }
  std::array<uint16_t, kTypes> placed{};
  forEachStructure(table, [this, &placed](uint8_t type, uint16_t offset) noexcept {
    setOffsetAt(uint32_t{firstOfType_[type]} + placed[type]++, offset);
  });
  usable_ = true;
}

std::optional<tStructureOffset> tStructureIndex::findStructure(uint8_t type,
                                                               uint32_t instance) const noexcept {
  const uint32_t first = firstOfType_[type];
  const uint32_t count = firstOfType_[type + 1u] - first;
  return instance < count ? std::optional<tStructureOffset>(offsetAt(first + instance))
                          : std::nullopt;
}

}  // namespace nQUENRA1400::nZOSMBIOS_1_1
