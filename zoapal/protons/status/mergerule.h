#ifndef ZOAPAL_PROTONS_STATUS_MERGERULE_H
#define ZOAPAL_PROTONS_STATUS_MERGERULE_H

#include <cstdint>

namespace nZOAPALS100 {

// The rule by which every status record accepts a new code: the first error wins, an error replaces a
// warning, a warning never replaces a warning, and success replaces nothing.
[[nodiscard]] constexpr bool replacesCode(int32_t current, int32_t next) noexcept {
  return current == 0 ? next != 0 : current > 0 && next < 0;
}

}  // namespace nZOAPALS100

#endif
