#ifndef SOURCE_USER_ATTRIBUTES_PROVIDERRESULT_H
#define SOURCE_USER_ATTRIBUTES_PROVIDERRESULT_H

#include <cstdint>

#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

// Merges the result of a read from the SMBIOS provider: an absent string or field becomes
// kAttributeNotSupported, a short buffer kBufferTooSmall. Other results leave the status unchanged: a
// malformed field is no error, and reads as nothing.
void mergeProviderResult(int32_t result, zoerr::Status& status) noexcept;

}  // namespace nQUENRA1400

#endif
