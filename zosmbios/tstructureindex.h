#ifndef ZOSMBIOS_TSTRUCTUREINDEX_H
#define ZOSMBIOS_TSTRUCTUREINDEX_H

#include <array>
#include <cstdint>
#include <optional>

#include "zoapal/protons/cppnewdelete/memoryallocation.h"
#include "zosmbios/tstructuretable.h"

namespace nQUENRA1400::nZOSMBIOS_1_1 {

// The offset of every structure of a table, so that a structure is found without walking. Gives the
// answers of tStructureTable::findStructure on every table, well-formed or not.
//
// Takes four bytes of heap for each structure: at most two thirds of the size of a well-formed table,
// whose structures have six bytes or more, and twice the size of any table. Without that memory the
// index stays unusable, and its owner walks the table instead.
class tStructureIndex {
 public:
  // Replaces the index by one of `table`, in two passes through it.
  void build(const tStructureTable& table) noexcept;
  void clear() noexcept;

  [[nodiscard]] bool isUsable() const noexcept { return usable_; }
  // Finds nothing while the index is unusable.
  [[nodiscard]] std::optional<tStructureOffset> findStructure(uint8_t type,
                                                              uint32_t instance) const noexcept;

 private:
  static constexpr uint32_t kTypes = 256;

  // offsets_[firstOfType_[t]] to offsets_[firstOfType_[t + 1] - 1] are the structures of type t in
  // table order.
  std::array<uint32_t, kTypes + 1> firstOfType_{};
  nZOAPAL000::tByteBuffer offsets_;
  bool usable_ = false;

  [[nodiscard]] tStructureOffset offsetAt(size_t position) const noexcept;
  void setOffsetAt(size_t position, tStructureOffset offset) noexcept;
};

}  // namespace nQUENRA1400::nZOSMBIOS_1_1

#endif
