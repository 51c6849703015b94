#ifndef SOURCE_USER_EXPORTS_DEVICEPATHATTRIBUTE_H
#define SOURCE_USER_EXPORTS_DEVICEPATHATTRIBUTE_H

#include <cstdint>

#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

// Reads QUENRA_ATTRIBUTE_DEVICE_PATH, which needs no session and no lock.
void readDevicePath(char* buffer, uint64_t* size, zoerr::Status& status) noexcept;

}  // namespace nQUENRA1400

#endif
