#ifndef SOURCE_USER_PRECONDITIONS_DRIVEENCRYPTION_H
#define SOURCE_USER_PRECONDITIONS_DRIVEENCRYPTION_H

#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

// True when the operating system says that the volume encryption of drive C: is on. False when it is
// off, unknown, or not there; and, with kUpdateEnvironment in the status, when the system cannot be
// asked: among others on a thread that uses COM in a single-threaded apartment. What the thread has
// of COM is afterwards as it was. Nothing is asked when the status already holds an error.
[[nodiscard]] bool IsSystemDriveEncrypted(zoerr::Status& status) noexcept;

}  // namespace nQUENRA1400

#endif
