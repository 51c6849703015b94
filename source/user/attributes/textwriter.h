#ifndef SOURCE_USER_ATTRIBUTES_TEXTWRITER_H
#define SOURCE_USER_ATTRIBUTES_TEXTWRITER_H

#include <cstdint>

#include "source/user/attributes/attributeaccess.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

// Writes a text attribute by the contract of QUENRA_setAttributeUTF8. Does nothing when the status
// holds an error.
void writeTextAttribute(const tAttributeAccess& access, uint32_t attribute, const char* text,
                        zoerr::Status& status) noexcept;

}  // namespace nQUENRA1400

#endif
