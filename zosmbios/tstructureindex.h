#ifndef ZOSMBIOS_TSTRUCTUREINDEX_H
#define ZOSMBIOS_TSTRUCTUREINDEX_H

#include <array>
#include <cstdint>
#include <optional>

#include "zoapal/protons/cppnewdelete/memoryallocation.h"
#include "zosmbios/tstructuretable.h"

namespace nQUENRA1400::nZOSMBIOS_1_1 {

// Knows where every structure of a table starts, so that a structure is found without walking. It
// gives the answers of tStructureTable::findStructure on every table, well-formed or not.
//
// The index is an aid: where there is no memory for it, or a table is too large for its 16-bit
// offsets, it stays unusable and the walk answers.
class tStructureIndex {
 public:
  // Indexes the table anew.
  void build(const tStructureTable& table) noexcept;
  void clear() noexcept;

  [[nodiscard]] bool isUsable() const noexcept { return usable_; }
  // None when it is not usable.
  [[nodiscard]] std::optional<tStructureOffset> findStructure(uint8_t type,
                                                              uint32_t instance) const noexcept;

 private:
  static constexpr uint32_t kTypes = 256;
  static constexpr size_t kLargestTable = 65535;

  // offsets_[firstOfType_[t]] to offsets_[firstOfType_[t + 1] - 1] are the structures of type t in
  // table order.
  std::array<uint16_t, kTypes + 1> firstOfType_{};
  nZOAPAL000::tByteBuffer offsets_;
  bool usable_ = false;

  [[nodiscard]] uint16_t offsetAt(uint32_t position) const noexcept;
  void setOffsetAt(uint32_t position, uint16_t offset) noexcept;
};

}  // namespace nQUENRA1400::nZOSMBIOS_1_1

#endif
