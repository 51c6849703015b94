#ifndef ZOSMBIOS_TSTRUCTURETABLE_H
#define ZOSMBIOS_TSTRUCTURETABLE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace nQUENRA1400::nZOSMBIOS_1_1 {

// A structure found in a table: where it starts, in bytes from the table's start.
using tStructureOffset = uint32_t;

// The plain way through an SMBIOS structure table, which nobody promises to be well-formed: every
// step is bounded by the table. Structures are a type byte, the length of the formatted area (these
// two bytes included), the rest of that area, and NUL-terminated strings up to an extra NUL.
class tStructureTable {
 public:
  constexpr tStructureTable() noexcept = default;
  explicit constexpr tStructureTable(std::span<const uint8_t> bytes) noexcept : bytes_(bytes) {}

  [[nodiscard]] constexpr std::span<const uint8_t> bytes() const noexcept { return bytes_; }

  // The structure that follows: behind the first two adjacent NULs after the formatted area. None
  // when the table ends before; a structure may begin on the table's last byte.
  [[nodiscard]] std::optional<tStructureOffset> nextStructure(
      tStructureOffset structure) const noexcept;

  // The instance-th structure of a type, from 0.
  [[nodiscard]] std::optional<tStructureOffset> findStructure(uint8_t type,
                                                              uint32_t instance) const noexcept;

  // Where the string set of a structure starts; may lie outside the table.
  [[nodiscard]] size_t stringSetOf(tStructureOffset structure) const noexcept;

 private:
  std::span<const uint8_t> bytes_;
};

}  // namespace nQUENRA1400::nZOSMBIOS_1_1

#endif
