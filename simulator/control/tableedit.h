#ifndef SIMULATOR_CONTROL_TABLEEDIT_H
#define SIMULATOR_CONTROL_TABLEEDIT_H

#include <cstdint>
#include <vector>

namespace nSimulator {

// Changes one byte in the formatted area of the first SMBIOS structure of a type. Returns false and
// changes nothing if the table has no such structure or it is too short for the offset.
[[nodiscard]] bool changeStructureByte(std::vector<uint8_t>& table, uint8_t type, uint8_t offset,
                                       uint8_t value);

// Removes all structures of a type from a table. Returns false if it has none.
[[nodiscard]] bool removeStructures(std::vector<uint8_t>& table, uint8_t type);

}  // namespace nSimulator

#endif
