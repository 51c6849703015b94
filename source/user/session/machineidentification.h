#ifndef SOURCE_USER_SESSION_MACHINEIDENTIFICATION_H
#define SOURCE_USER_SESSION_MACHINEIDENTIFICATION_H

#include "codegen/apalcodegen/tinterfaceproxy_hostcontroller.h"
#include "source/user/machine/smbiosfields.h"
#include "zoapal/protons/status/zoerrstatus.h"
#include "zosmbios/czosmbiosprovider.h"

namespace nQUENRA1400 {

// Fetches the machine's SMBIOS table and version from the controller interface, installs them in the
// provider, checks that the library supports the machine, and lists its memory modules. Does nothing
// when the status holds an error. Reports the driver's code, kMemoryFull, or
// QUENRA_STATUS_NO_CONTROLLER for a machine that is unknown or not supported, and the codes of
// tMemoryModules::find.
void identifyMachine(nZOAPAL000::iInterfaceProxy_hostController& controller,
                     nZOSMBIOS_1_1::cZoSmBiosProvider& provider, tMemoryModules& memoryModules,
                     zoerr::Status& status) noexcept;

}  // namespace nQUENRA1400

#endif
