#ifndef ZOARKRA_LOCATION_H
#define ZOARKRA_LOCATION_H

#include "zoapal/protons/status/tsourcelocation.h"

namespace zoark {

// The symbolic names of the codes that the routing adaptor raises.
inline constexpr const char* kMemoryFullConstant = "zoapalerr_memoryFull";
inline constexpr const char* kInvalidParameterConstant = "zoapalerr_invalidParameter";
inline constexpr const char* kBadSelectorConstant = "zopalerr_badSelector";

// A site of the session or the iterator. Some codes have no symbolic name.
[[nodiscard]] constexpr nZOAPALS100::tSourceLocation adaptorLocation(
    uint32_t line, const char* errorConstant = nullptr) noexcept {
  return {"zoarkra\\arkroutingadaptor", line, nZOAPALS100::kComponent, errorConstant};
}

// A site of the registry of topographies.
[[nodiscard]] constexpr nZOAPALS100::tSourceLocation registrationLocation(
    uint32_t line, const char* errorConstant) noexcept {
  return {"zoarkra\\topographyinforegistration", line, nZOAPALS100::kComponent, errorConstant};
}

// A site of the request reader.
[[nodiscard]] constexpr nZOAPALS100::tSourceLocation requestLocation(
    uint32_t line, const char* errorConstant) noexcept {
  return {"RoCoUtils", line, nZOAPALS100::kComponent, errorConstant};
}

}  // namespace zoark

#endif
