#ifndef ZOARKRA_ROUTEREQUEST_H
#define ZOARKRA_ROUTEREQUEST_H

#include <cstdint>
#include <memory_resource>
#include <vector>

#include "protocol/routingrecords.h"
#include "zoarkra/topography.h"

namespace zoark {

// The three documents of a request.
struct tRequestTexts {
  const char* seeds;
  const char* destinations;
  const char* modifiers;
};

// What they ask for, as the driver takes it.
struct tRouteRequest {
  explicit tRouteRequest(std::pmr::memory_resource* memory) : seeds(memory), destinations(memory) {}

  std::pmr::vector<tRouteSeed> seeds;
  std::pmr::vector<uint32_t> destinations;  // terminal ids
  tRouteModifiers modifiers{};
  uint32_t options = 0;
};

// Reads a request; a terminal that the topography does not have becomes ROUTE_NO_TERMINAL. The
// first fault found is thrown as a zoerr::Exception with kInvalidParameter and traced: the
// description tells it under "zoroco_debug", and under "json" the document in which it was found.
// Memory is taken from that of `request`; throws std::bad_alloc.
void readRouteRequest(const tRequestTexts& texts, const tTopography& topography,
                      tRouteRequest& request);

}  // namespace zoark

#endif
