#ifndef SOURCE_USER_FIRMWARE_PARSERLOCATION_H
#define SOURCE_USER_FIRMWARE_PARSERLOCATION_H

#include "zoapal/protons/status/tstatus.h"

namespace nQUENRA1400 {

// A location in the parser of firmware images.
[[nodiscard]] constexpr nZOAPALS100::tSourceLocation parserLocation(uint32_t line) noexcept {
  return {"source\\user\\tFirmwareImageParser", line};
}

}  // namespace nQUENRA1400

#endif
