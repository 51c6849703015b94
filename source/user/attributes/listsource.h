#ifndef SOURCE_USER_ATTRIBUTES_LISTSOURCE_H
#define SOURCE_USER_ATTRIBUTES_LISTSOURCE_H

#include <cstdint>

#include "zosmbios/fieldid.h"

namespace nQUENRA1400 {

// A list inside one SMBIOS structure: a byte holds the number of entries in use, and the attribute's
// instance is the position in the list.
struct tListSource {
  nZOSMBIOS_1_1::tFieldId count;
  nZOSMBIOS_1_1::tFieldId first;  // the entry at position 0
  uint8_t step;                   // bytes from entry to entry
  uint8_t capacity;               // of the structure, in entries
  uint32_t line;                  // of the failure of a position beyond the list

  [[nodiscard]] constexpr nZOSMBIOS_1_1::tFieldId entry(uint32_t position) const noexcept {
    return first + step * position;
  }
};

}  // namespace nQUENRA1400

#endif
