#ifndef ZOARKRA_FAILURE_H
#define ZOARKRA_FAILURE_H

#include <cstdint>
#include <string_view>

#include "zoapal/protons/status/tstatus.h"
#include "zoapal/protons/status/zoerrstatus.h"

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

// The code for an unknown selector: an attribute, a mode, a topography.
inline constexpr int32_t kBadSelector = -50003;

// Appends a member to the description of a status, as far as there is memory for it.
void appendMember(zoerr::Status& status, std::string_view key, std::string_view text) noexcept;
void appendMember(zoerr::Status& status, std::string_view key, uint64_t number) noexcept;

// Throws a zoerr::Exception with the code, the location's error constant if it has one, and the
// location.
[[noreturn]] void raise(int32_t code, const nZOAPALS100::tSourceLocation& location);

// A fresh record for one request. Its code is the caller's, which the driver receives.
[[nodiscard]] nZOAPALS100::tStatus statusForDriver(const zoerr::Status& status) noexcept;

// Merges a warning of a request into the status, and throws an error as a zoerr::Exception.
void mergeDriverStatus(const nZOAPALS100::tStatus& driver, zoerr::Status& status);

}  // namespace zoark

#endif
