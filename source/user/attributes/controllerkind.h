#ifndef SOURCE_USER_ATTRIBUTES_CONTROLLERKIND_H
#define SOURCE_USER_ATTRIBUTES_CONTROLLERKIND_H

#include <cstdint>

#include "zosmbios/czosmbiosprovider.h"

namespace nQUENRA1400 {

// A number for the answer "another".
inline constexpr uint32_t kOtherKind = 0xFFFFFFFF;

// The kind of controller, told from the bus structures that the machine has; else 1 to 5 as the
// platform structure says, else kOtherKind.
[[nodiscard]] uint32_t controllerKind(nZOSMBIOS_1_1::cZoSmBiosProvider& provider) noexcept;

}  // namespace nQUENRA1400

#endif
