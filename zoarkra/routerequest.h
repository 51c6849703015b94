#ifndef ZOARKRA_ROUTEREQUEST_H
#define ZOARKRA_ROUTEREQUEST_H

#include <cstdint>
#include <memory_resource>
#include <vector>

#include "protocol/routingrequests.h"
#include "zoarkra/topography.h"

namespace zoark {

// The three documents of a request.
struct tRequestTexts {
  const char* seeds;
  const char* destinations;
  const char* modifiers;
};

// A request as the records of the driver.
struct tRouteRequest {
  explicit tRouteRequest(std::pmr::memory_resource* memory) : seeds(memory), destinations(memory) {}

  std::pmr::vector<tRouteSeed> seeds;
  std::pmr::vector<uint32_t> destinations;  // terminal ids
  tRouteModifiers modifiers{};
  uint32_t options = 0;
};

// Reads a request; an unknown terminal becomes ROUTE_NO_TERMINAL. Traces the first fault and throws it
// as a zoerr::Exception with kInvalidParameter, whose description holds the fault under "zoroco_debug"
// and its document under "json". Allocates from the memory of `request`; throws std::bad_alloc.
void readRouteRequest(const tRequestTexts& texts, const tTopography& topography,
                      tRouteRequest& request);

}  // namespace zoark

#endif
