#ifndef SOURCE_USER_ATTRIBUTES_TEXTREADER_H
#define SOURCE_USER_ATTRIBUTES_TEXTREADER_H

#include <cstdint>

#include "source/user/attributes/attributeaccess.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

// Reads a text attribute into the caller's buffer by the contract of QUENRA_getAttributeUTF8. Reads no
// field of an ordinary attribute when `size` is null. Does nothing when the status holds an error.
void readTextAttribute(const tAttributeAccess& access, uint32_t attribute, char* buffer,
                       uint64_t* size, zoerr::Status& status) noexcept;

}  // namespace nQUENRA1400

#endif
