#ifndef ZOARKRA_TOPOGRAPHYINFOREGISTRATION_H
#define ZOARKRA_TOPOGRAPHYINFOREGISTRATION_H

#include <string_view>

#include "zoarkra/topography.h"

namespace zoark {

// The topography with this name. Traces an unknown name and throws zoerr::Exception with kBadSelector.
[[nodiscard]] const tTopography& findTopography(std::string_view name);

}  // namespace zoark

#endif
