#ifndef ZOSMBIOS_STRINGSET_H
#define ZOSMBIOS_STRINGSET_H

#include <string_view>

#include "zoapal/protons/status/tstatus.h"
#include "zosmbios/tstructuretable.h"

namespace nQUENRA1400::nZOSMBIOS_1_1 {

// String `number`, from 1, of the string set that starts at `set`, a byte offset in the table. Reports
// kTableMalformed when the set runs past the end of the table, has fewer strings, or the string is
// longer than `longest` characters.
[[nodiscard]] std::string_view findString(const tStructureTable& table, size_t set, uint8_t number,
                                          size_t longest, nZOAPALS100::tStatus& status) noexcept;

}  // namespace nQUENRA1400::nZOSMBIOS_1_1

#endif
