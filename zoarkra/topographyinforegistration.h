#ifndef ZOARKRA_TOPOGRAPHYINFOREGISTRATION_H
#define ZOARKRA_TOPOGRAPHYINFOREGISTRATION_H

#include <string_view>

#include "zoarkra/topography.h"

namespace zoark {

// The topography with this name. Throws zoerr::Exception with kBadSelector when the library has
// none of that name; the failure is traced.
[[nodiscard]] const tTopography& findTopography(std::string_view name);

}  // namespace zoark

#endif
