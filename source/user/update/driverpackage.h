#ifndef SOURCE_USER_UPDATE_DRIVERPACKAGE_H
#define SOURCE_USER_UPDATE_DRIVERPACKAGE_H

#include <string>

#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

// The operating system's tool for driver packages.
inline constexpr const char* kDriverStoreTool = "C:\\Windows\\Sysnative\\pnputil.exe";

// Installs the driver package of an .inf file with the operating system's tool, and waits at most five
// minutes for it. The path is in the code page of the process. Neither the tool's exit code nor a
// timeout is examined: an installation that was started counts as done. Reports
// QUENRA_STATUS_UPDATE_ENVIRONMENT when the tool is missing, QUENRA_STATUS_INVALID_IMAGE when it cannot
// be started. Does nothing when the status holds an error. Throws std::bad_alloc, before anything is
// started.
void installDriverPackage(const std::string& infPath, zoerr::Status& status);

}  // namespace nQUENRA1400

#endif
