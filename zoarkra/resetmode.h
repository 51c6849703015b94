#ifndef ZOARKRA_RESETMODE_H
#define ZOARKRA_RESETMODE_H

#include <cstdint>

namespace zoark {

// The driver's flag for a state of rest: 0 for "default", 1 for "floating". Anything else, null
// included, throws zoerr::Exception with kBadSelector.
[[nodiscard]] uint32_t floatingFlagOf(const char* mode);

}  // namespace zoark

#endif
