#ifndef SOURCE_USER_UPDATE_FIRMWAREUPDATE_H
#define SOURCE_USER_UPDATE_FIRMWAREUPDATE_H

#include <cstddef>
#include <cstdint>

#include "source/user/attributes/attributes.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

// Checks that the machine may be updated, splits the image, and applies it. `flags` 0 skips BIOS and Marten
// firmware that is not newer than the installed one; 1 skips nothing.
//
// A failure restores the Marten's version marker; the driver keeps the firmware that it has accepted.
// Files stay in the folder of the update, unless one cannot be opened or a driver package cannot be
// installed. Until the update returns, other processes cannot change them. Failures of the system, such as
// missing random bytes, are reported as QUENRA_STATUS_UPDATE_ENVIRONMENT.
// Throws std::bad_alloc.
void updateFirmware(const tAttributeAccess& access, const void* image, size_t imageSize,
                    uint32_t flags, zoerr::Status& status);

}  // namespace nQUENRA1400

#endif
