#ifndef SOURCE_USER_UPDATE_MARTENTEXT_H
#define SOURCE_USER_UPDATE_MARTENTEXT_H

#include <cstdint>
#include <string>

#include "codegen/apalcodegen/iinterfaceproxy_hostmarten.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

// A text attribute of the Marten interface, of whatever length, up to its first NUL. The driver's
// codes reach the status, but for the one by which it tells the size. Empty when the status holds an
// error then. Throws std::bad_alloc.
[[nodiscard]] std::string readMartenText(nZOAPAL000::iInterfaceProxy_hostMarten& marten,
                                         uint32_t attribute, zoerr::Status& status);

}  // namespace nQUENRA1400

#endif
