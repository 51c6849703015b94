#ifndef ZOSMBIOS_TSTRUCTURETABLE_H
#define ZOSMBIOS_TSTRUCTURETABLE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>

#include "zoapal/protons/cppnewdelete/memoryallocation.h"

namespace nQUENRA1400::nZOSMBIOS_1_1 {

// The start of a structure, in bytes from the start of the table. Every source of a table reports
// its size in 32 bits.
using tStructureOffset = uint32_t;

// The plain walk through an SMBIOS structure table. The table may be malformed: every step is bounded
// by its end. A structure is a type byte, the length of the formatted area (these two bytes
// included), the rest of that area, and NUL-terminated strings up to an extra NUL.
class tStructureTable {
 public:
  constexpr tStructureTable() noexcept = default;
  explicit constexpr tStructureTable(std::span<const uint8_t> bytes) noexcept : bytes_(bytes) {}

  [[nodiscard]] constexpr std::span<const uint8_t> bytes() const noexcept { return bytes_; }

  // None in a table of no bytes.
  [[nodiscard]] std::optional<tStructureOffset> firstStructure() const noexcept;

  // The structure after the first two adjacent NULs that follow the formatted area. None when the
  // table ends before; a structure may begin on the table's last byte.
  [[nodiscard]] std::optional<tStructureOffset> nextStructure(
      tStructureOffset structure) const noexcept;

  // The instance-th structure of a type, from 0. Walks from the start of the table; to visit several
  // instances use tStructuresOfType.
  [[nodiscard]] std::optional<tStructureOffset> findStructure(uint8_t type,
                                                              uint32_t instance) const noexcept;

  // The start of a structure's string set; may lie outside the table.
  [[nodiscard]] size_t stringSetOf(tStructureOffset structure) const noexcept;

 private:
  std::span<const uint8_t> bytes_;
};

// Enumerates the structures of one type in table order: instance 0, 1, and so on. All calls of next()
// together pass through the table once. The table's bytes must outlive the enumeration.
class tStructuresOfType {
 public:
  tStructuresOfType(const tStructureTable& table, uint8_t type) noexcept
      : table_(table), type_(type), position_(table.firstStructure()) {}

  // The next structure of the type; none after the last one.
  [[nodiscard]] std::optional<tStructureOffset> next() noexcept;

 private:
  tStructureTable table_;
  uint8_t type_;
  std::optional<tStructureOffset> position_;  // of the structure to be examined next
};

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
  // Inline: most of a read's time would be this call.
  [[nodiscard]] std::optional<tStructureOffset> findStructure(uint8_t type,
                                                              uint32_t instance) const noexcept {
    const uint32_t first = firstOfType_[type];
    const uint32_t count = firstOfType_[type + 1u] - first;
    return instance < count
               ? std::optional<tStructureOffset>(offsetAt(size_t{first} + size_t{instance}))
               : std::nullopt;
  }

 private:
  static constexpr uint32_t kTypes = 256;

  // offsets_[firstOfType_[t]] to offsets_[firstOfType_[t + 1] - 1] are the structures of type t in
  // table order.
  std::array<uint32_t, kTypes + 1> firstOfType_{};
  nZOAPAL000::tByteBuffer offsets_;
  bool usable_ = false;

  [[nodiscard]] tStructureOffset offsetAt(size_t position) const noexcept {
    tStructureOffset offset;
    std::memcpy(&offset, offsets_.get() + position * sizeof offset, sizeof offset);
    return offset;
  }
  void setOffsetAt(size_t position, tStructureOffset offset) noexcept;
};

}  // namespace nQUENRA1400::nZOSMBIOS_1_1

#endif
