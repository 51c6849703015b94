#ifndef SOURCE_USER_UPDATE_MARTENTEXT_H
#define SOURCE_USER_UPDATE_MARTENTEXT_H

#include <cstdint>
#include <string>

#include "codegen/apalcodegen/iinterfaceproxy_hostmarten.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

// Reads a text attribute of the Marten interface up to its first NUL. The first of two requests fails with
// kBufferTooSmall to report the size; other codes of the driver reach the status. Returns an empty text
// when the status holds an error. Throws std::bad_alloc, also for an implausible size.
[[nodiscard]] std::string readMartenText(nZOAPAL000::iInterfaceProxy_hostMarten& marten,
                                         uint32_t attribute, zoerr::Status& status);

}  // namespace nQUENRA1400

#endif
