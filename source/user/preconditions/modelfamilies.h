#ifndef SOURCE_USER_PRECONDITIONS_MODELFAMILIES_H
#define SOURCE_USER_PRECONDITIONS_MODELFAMILIES_H

#include "zosmbios/czosmbiosprovider.h"

namespace nQUENRA1400 {

// True if the machine's product name is known and matches neither of the two model families that
// the library does not support. False if the name matches, cannot be read or is absent, or if memory
// for the test is short.
[[nodiscard]] bool IsOutsideModelFamilies(nZOSMBIOS_1_1::cZoSmBiosProvider& provider) noexcept;

}  // namespace nQUENRA1400

#endif
