#ifndef TOOLS_QUENRA_READING_READATTRIBUTE_H
#define TOOLS_QUENRA_READING_READATTRIBUTE_H

#include <cstdint>

#include "tools/quenra/reading/iquenra.h"
#include "tools/quenra/reading/reading.h"

namespace nCommandLine {

// Reads a text of any length, or an unsigned value. The device path ignores the handle.
[[nodiscard]] tReading readAttribute(iQuenra& library, uint64_t handle,
                                     const tAttributeAddress& address);

}  // namespace nCommandLine

#endif
