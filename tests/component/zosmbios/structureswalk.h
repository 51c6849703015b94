#ifndef TESTS_COMPONENT_ZOSMBIOS_STRUCTURESWALK_H
#define TESTS_COMPONENT_ZOSMBIOS_STRUCTURESWALK_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace nTests {

// The structures of a table, found by a linear search: the reference for provider, walk and index.
struct tWalkedStructure {
  size_t offset;
  uint8_t type;
};

// The offset after the two NULs that end a structure; the table's size when there are none.
inline size_t endOfStrings(std::span<const uint8_t> table, size_t from) {
  constexpr std::string_view kTwoNuls("\0\0", 2);
  const std::string_view bytes(reinterpret_cast<const char*>(table.data()), table.size());
  const size_t nuls = bytes.find(kTwoNuls, from);
  return nuls == std::string_view::npos ? table.size() : nuls + kTwoNuls.size();
}

inline std::vector<tWalkedStructure> walkStructures(std::span<const uint8_t> table) {
  std::vector<tWalkedStructure> structures;
  size_t offset = 0;
  while (offset < table.size()) {
    structures.push_back({offset, table[offset]});
    if (offset + 1 == table.size()) {
      break;
    }
    offset = endOfStrings(table, offset + table[offset + 1]);
  }
  return structures;
}

inline std::optional<size_t> walkedStructure(const std::vector<tWalkedStructure>& structures,
                                             uint8_t type, uint32_t instance) {
  for (const tWalkedStructure& structure : structures) {
    if (structure.type == type && instance-- == 0) {
      return structure.offset;
    }
  }
  return std::nullopt;
}

}  // namespace nTests

#endif
