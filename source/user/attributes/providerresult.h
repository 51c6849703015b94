#ifndef SOURCE_USER_ATTRIBUTES_PROVIDERRESULT_H
#define SOURCE_USER_ATTRIBUTES_PROVIDERRESULT_H

#include <cstdint>

#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

// Takes over the result of a read from the SMBIOS provider: no such string and no such field are
// kAttributeNotSupported, a short buffer is kBufferTooSmall. Any other result leaves the status as
// it is: a malformed field reads as nothing, without an error.
void mergeProviderResult(int32_t result, zoerr::Status& status) noexcept;

}  // namespace nQUENRA1400

#endif
