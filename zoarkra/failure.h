#ifndef ZOARKRA_FAILURE_H
#define ZOARKRA_FAILURE_H

#include <cstdint>
#include <string_view>

#include "zoapal/protons/status/exception.h"
#include "zoapal/protons/status/zoerrstatus.h"
#include "zoarkra/location.h"

namespace zoark {

// The code for an unknown selector: an attribute, a mode, a topography.
inline constexpr int32_t kBadSelector = -50003;

// Appends a member to the description of a status, as far as there is memory for it.
void appendMember(zoerr::Status& status, std::string_view key, std::string_view text) noexcept;
void appendMember(zoerr::Status& status, std::string_view key, uint64_t number) noexcept;

// Throws a zoerr::Exception with the code, the location's error constant if it has one, and the
// location.
[[noreturn]] void raise(int32_t code, const nZOAPALS100::tSourceLocation& location);

}  // namespace zoark

#endif
