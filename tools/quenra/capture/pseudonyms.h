#ifndef TOOLS_QUENRA_CAPTURE_PSEUDONYMS_H
#define TOOLS_QUENRA_CAPTURE_PSEUDONYMS_H

#include <string_view>

#include "tools/capture/machinerecord.h"

namespace nCommandLine {

// Replaces the serial numbers, asset tags and the UUID of the SMBIOS table by pseudonyms, wherever they occur
// in the record, and removes the name of the account that owns the driver-store tool.
//
// A pseudonym has the length of the original, with letters for letters and digits for digits. It depends on
// the original and `key` only, so the same rack has the same pseudonyms in every capture with the same key.
// Without a key, a person who can list all possible serial numbers can find the one of a pseudonym.
//
// Entries such as "Not Applicable" stay: they name no machine, and the library interprets them. A number of
// fewer than five characters is replaced only where it is the complete text of its field or reading.
void replaceSerialNumbers(nCapture::tMachineRecord& record, std::string_view key);

}  // namespace nCommandLine

#endif
