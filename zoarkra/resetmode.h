#ifndef ZOARKRA_RESETMODE_H
#define ZOARKRA_RESETMODE_H

#include <cstdint>

namespace zoark {

// The driver's flag for a reset mode: 0 for "default", 1 for "floating". Throws zoerr::Exception with
// kBadSelector for any other mode, also null.
[[nodiscard]] uint32_t floatingFlagOf(const char* mode);

}  // namespace zoark

#endif
