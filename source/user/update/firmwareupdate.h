#ifndef SOURCE_USER_UPDATE_FIRMWAREUPDATE_H
#define SOURCE_USER_UPDATE_FIRMWAREUPDATE_H

#include <cstddef>
#include <cstdint>

#include "source/user/attributes/attributeaccess.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

// Checks that the machine may be updated, splits the image, and applies it. `flags` 0 skips the BIOS
// and Marten firmware when what is installed is as new; 1 skips nothing.
//
// When it fails, the Marten's version marker is as it was; what the driver has taken by then it has.
// Files stay in the folder of the update, unless one cannot be opened or a driver package cannot be
// installed. Throws std::bad_alloc, std::filesystem::filesystem_error and
// boost::uuids::entropy_error.
void updateFirmware(const tAttributeAccess& access, const void* image, size_t imageSize,
                    uint32_t flags, zoerr::Status& status);

}  // namespace nQUENRA1400

#endif
