#ifndef SOURCE_USER_PRECONDITIONS_DRIVEENCRYPTION_H
#define SOURCE_USER_PRECONDITIONS_DRIVEENCRYPTION_H

#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

// True if the operating system reports that the volume encryption of drive C: is on. False if it is
// off, unknown or not available. If the system cannot be queried, for example on a thread in a
// single-threaded apartment, returns false and reports kUpdateEnvironment. Leaves COM on the calling
// thread as it was. Makes no query if the status holds an error.
[[nodiscard]] bool IsSystemDriveEncrypted(zoerr::Status& status) noexcept;

}  // namespace nQUENRA1400

#endif
