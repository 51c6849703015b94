#ifndef SOURCE_USER_ATTRIBUTES_CONTROLLERKIND_H
#define SOURCE_USER_ATTRIBUTES_CONTROLLERKIND_H

#include <cstdint>

#include "quenra_attributes.h"
#include "zosmbios/czosmbiosprovider.h"

namespace nQUENRA1400 {

// The number of a kind that has none of its own.
inline constexpr uint32_t kOtherKind = QUENRA_KIND_OTHER;

// The kind of controller: 1 to 3 by the bus structures of the table; without them 1 to 5 by the
// platform structure; else kOtherKind.
[[nodiscard]] uint32_t controllerKind(nZOSMBIOS_1_1::cZoSmBiosProvider& provider) noexcept;

}  // namespace nQUENRA1400

#endif
