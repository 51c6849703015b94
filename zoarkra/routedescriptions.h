#ifndef ZOARKRA_ROUTEDESCRIPTIONS_H
#define ZOARKRA_ROUTEDESCRIPTIONS_H

#include <cstdint>
#include <memory_resource>
#include <span>
#include <string>

#include "protocol/routingrequests.h"
#include "zoarkra/topography.h"

namespace zoark {

// The answers of a session as compact JSON texts, appended to `text`. Throw std::bad_alloc.

// Calculated routes, in their order.
void describeRoutes(std::span<const tRouteRecord> routes, const tTopography& topography,
                    std::pmr::string& text);

// Conflicting routes, in their order.
void describeConflicts(std::span<const tRouteConflict> conflicts, std::pmr::string& text);

// The names of terminals. An unknown id is an empty text, so that the positions stay.
void describePath(std::span<const uint32_t> terminals, const tTopography& topography,
                  std::pmr::string& text);

// The names of the handled constraints.
void describeHandledConstraints(std::pmr::string& text);

}  // namespace zoark

#endif
