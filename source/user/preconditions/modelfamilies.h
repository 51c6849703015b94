#ifndef SOURCE_USER_PRECONDITIONS_MODELFAMILIES_H
#define SOURCE_USER_PRECONDITIONS_MODELFAMILIES_H

#include "zosmbios/czosmbiosprovider.h"

namespace nQUENRA1400 {

// True when the machine's product name is known and matches neither of the two model families that
// the library does not serve. False when the name matches, cannot be read, is absent, or when
// memory for the test is short.
[[nodiscard]] bool IsOutsideModelFamilies(nZOSMBIOS_1_1::cZoSmBiosProvider& provider) noexcept;

}  // namespace nQUENRA1400

#endif
