#ifndef TESTS_BUILDERS_REFERENCETABLE_H
#define TESTS_BUILDERS_REFERENCETABLE_H

#include <cstdint>
#include <vector>

#include "tests/builders/smbiosstructure.h"

namespace nTests {

// The SMBIOS table of a machine that the library serves, in which every field that an attribute
// reads holds a value of its own. Tests change what they are about.
//
// Memory: four sockets, of which 0 and 2 are populated. Two processors.
class tReferenceTable {
 public:
  tReferenceTable();

  // The instance-th structure of a type; fails loudly when there is none.
  [[nodiscard]] tSmbiosStructure& structure(uint8_t type, unsigned instance = 0);
  tReferenceTable& remove(uint8_t type);
  [[nodiscard]] std::vector<uint8_t> build() const;

 private:
  std::vector<tSmbiosStructure> structures_;
};

}  // namespace nTests

#endif
