#ifndef SOURCE_USER_SESSION_SMBIOSHANDOVER_H
#define SOURCE_USER_SESSION_SMBIOSHANDOVER_H

#include "codegen/apalcodegen/iinterfaceproxy_hostcontroller.h"
#include "zoapal/protons/status/zoerrstatus.h"
#include "zosmbios/czosmbiosprovider.h"

namespace nQUENRA1400 {

// Fetches the SMBIOS table and version from the driver and installs them in the provider. Reports the
// driver's code, or kMemoryFull. When the driver reports sizes and then fails, the provider loses its
// table; after any earlier failure it keeps its table.
void installSmbiosTable(nZOAPAL000::iInterfaceProxy_hostController& controller,
                        nZOSMBIOS_1_1::cZoSmBiosProvider& provider, zoerr::Status& status) noexcept;

}  // namespace nQUENRA1400

#endif
