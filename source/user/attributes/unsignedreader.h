#ifndef SOURCE_USER_ATTRIBUTES_UNSIGNEDREADER_H
#define SOURCE_USER_ATTRIBUTES_UNSIGNEDREADER_H

#include <cstdint>

#include "source/user/attributes/attributeaccess.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

// Reads an unsigned attribute by the contract of QUENRA_getAttributeU32. Does nothing when the status
// holds an error.
void readUnsignedAttribute(const tAttributeAccess& access, uint32_t attribute, uint32_t& value,
                           zoerr::Status& status) noexcept;

}  // namespace nQUENRA1400

#endif
