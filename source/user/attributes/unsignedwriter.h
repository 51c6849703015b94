#ifndef SOURCE_USER_ATTRIBUTES_UNSIGNEDWRITER_H
#define SOURCE_USER_ATTRIBUTES_UNSIGNEDWRITER_H

#include <cstdint>

#include "source/user/attributes/attributeaccess.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

// Writes an unsigned attribute by the contract of QUENRA_setAttributeU32. Does nothing when the status
// holds an error.
void writeUnsignedAttribute(const tAttributeAccess& access, uint32_t attribute, uint32_t value,
                            zoerr::Status& status) noexcept;

}  // namespace nQUENRA1400

#endif
