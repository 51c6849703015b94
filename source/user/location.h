#ifndef SOURCE_USER_LOCATION_H
#define SOURCE_USER_LOCATION_H

#include "zoapal/protons/status/tstatus.h"

namespace nQUENRA1400 {

// A site of the exports or the session.
[[nodiscard]] constexpr nZOAPALS100::tSourceLocation sessionLocation(uint32_t line) noexcept {
  return {"source\\user\\tControllerUserSession", line};
}

}  // namespace nQUENRA1400

#endif
