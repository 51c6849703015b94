#include "simulator/control/tableedit.h"

#include <cstddef>
#include <optional>

namespace nSimulator {
namespace {

constexpr size_t kHeaderSize = 4;

// A structure: its formatted area, then its strings with the two NULs that end them.
struct tStructure {
  size_t begin;
  size_t formattedSize;
  size_t end;
};

// The structure at an offset; none at the end of the table or if the table is malformed.
std::optional<tStructure> structureAt(const std::vector<uint8_t>& table, size_t begin) {
  if (table.size() - begin < kHeaderSize || table[begin + 1] < kHeaderSize) {
    return std::nullopt;
  }
  const size_t formattedSize = table[begin + 1];
  for (size_t end = begin + formattedSize + 2; end <= table.size(); ++end) {
    if (table[end - 2] == 0 && table[end - 1] == 0) {
      return tStructure{begin, formattedSize, end};
    }
  }
  return std::nullopt;
}

}  // namespace

bool changeStructureByte(std::vector<uint8_t>& table, uint8_t type, uint8_t offset, uint8_t value) {
  size_t place = 0;
  while (const auto structure = structureAt(table, place)) {
    if (table[place] == type) {
      const bool fits = offset >= kHeaderSize && offset < structure->formattedSize;
      if (fits) {
        table[place + offset] = value;
      }
      return fits;
    }
    place = structure->end;
  }
  return false;
}

bool removeStructures(std::vector<uint8_t>& table, uint8_t type) {
  bool found = false;
  size_t place = 0;
  while (const auto structure = structureAt(table, place)) {
    if (table[place] == type) {
      found = true;
      table.erase(table.begin() + static_cast<ptrdiff_t>(place),
                  table.begin() + static_cast<ptrdiff_t>(structure->end));
    } else {
      place = structure->end;
    }
  }
  return found;
}

}  // namespace nSimulator
