#ifndef TESTS_BUILDERS_REFERENCETABLE_H
#define TESTS_BUILDERS_REFERENCETABLE_H

#include <cstdint>
#include <vector>

#include "tests/builders/smbiosstructure.h"

namespace nTests {

// The SMBIOS table of a machine that the library supports. Every field that an attribute reads
// has a distinct value. A test changes the fields that it examines.
//
// Memory: four sockets, of which 0 and 2 are populated. Two processors.
class tReferenceTable {
 public:
  tReferenceTable();

  // The instance-th structure of a type; throws std::out_of_range if it does not exist.
  [[nodiscard]] tSmbiosStructure& structure(uint8_t type, unsigned instance = 0);
  tReferenceTable& remove(uint8_t type);
  [[nodiscard]] std::vector<uint8_t> build() const;

 private:
  std::vector<tSmbiosStructure> structures_;
};

}  // namespace nTests

#endif
