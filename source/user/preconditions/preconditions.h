// Checks of the machine before a session or an update.
#ifndef SOURCE_USER_PRECONDITIONS_PRECONDITIONS_H
#define SOURCE_USER_PRECONDITIONS_PRECONDITIONS_H

#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

namespace nZOSMBIOS_1_1 {
class cZoSmBiosProvider;
}

// True if the operating system reports that the volume encryption of drive C: is on. False if it is
// off, unknown or not available. If the system cannot be queried, for example on a thread in a
// single-threaded apartment, returns false and reports QUENRA_STATUS_UPDATE_ENVIRONMENT. Leaves COM on
// the calling thread as it was. Makes no query if the status holds an error.
[[nodiscard]] bool IsSystemDriveEncrypted(zoerr::Status& status) noexcept;

// True if the machine's product name is known and matches neither of the two model families that
// the library does not support. False if the name matches, cannot be read or is absent.
[[nodiscard]] bool IsOutsideModelFamilies(nZOSMBIOS_1_1::cZoSmBiosProvider& provider) noexcept;

}  // namespace nQUENRA1400

#endif
