#ifndef TESTS_COMPONENT_ZOSMBIOS_STRUCTURESWALK_H
#define TESTS_COMPONENT_ZOSMBIOS_STRUCTURESWALK_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace nTests {

// The structures of a table, found byte by byte: the reference for provider, walk and index.
struct tWalkedStructure {
  size_t offset;
  uint8_t type;
};
std::vector<tWalkedStructure> walkStructures(std::span<const uint8_t> table);

std::optional<size_t> walkedStructure(const std::vector<tWalkedStructure>& structures, uint8_t type,
                                      uint32_t instance);

}  // namespace nTests

#endif
