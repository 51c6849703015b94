#include "simulator/model/routelist.h"

#include <stddef.h>

#include "simulator/model/bytes.h"

static const char kTopographyName[] = "pxiContTriggerRouter";

void routerClear(tRouter* router) {
  while (router->count != 0) {
    routerRemove(router, &router->routes[router->count - 1]);
  }
  router->pathLength = 0;
  router->topographyNameSize = sizeof(kTopographyName);
  copyBytes(router->topographyName, kTopographyName, sizeof(kTopographyName));
}

tRoute* routerAdd(tRouter* router, const tRoute* route) {
  if (router->count == SIMULATOR_ROUTE_CAPACITY) {
    return NULL;
  }
  tRoute* added = &router->routes[router->count];
  *added = *route;
  added->ticket = ++router->nextTicket;
  ++router->count;
  ++router->counts.calculated;
  return added;
}

tRoute* routerFindTicket(tRouter* router, uint32_t ticket) {
  for (uint32_t i = 0; i < router->count; ++i) {
    if (router->routes[i].ticket == ticket) {
      return &router->routes[i];
    }
  }
  return NULL;
}

tRoute* routerFind(tRouter* router, uint64_t session, uint32_t ticket) {
  tRoute* found = routerFindTicket(router, ticket);
  return found != NULL && found->session.file == session ? found : NULL;
}

void routerMove(tRouter* router, tRoute* route, tSimulatorRouteState to) {
  tRouteCounts* counts = &router->counts;
  switch (to) {
    case kSimulatorRouteProgrammed:
      ++counts->programmed;
      break;
    case kSimulatorRouteReserved:
      ++*(route->state == kSimulatorRouteProgrammed ? &counts->unprogrammed : &counts->reserved);
      break;
    case kSimulatorRouteCalculated:
      ++counts->unreserved;
      break;
  }
  route->state = to;
}

void routerDemote(tRouter* router, tRoute* route) {
  router->counts.unprogrammed += route->state == kSimulatorRouteProgrammed ? 1 : 0;
  ++router->counts.demoted;
  route->state = kSimulatorRouteCalculated;
}

void routerRemove(tRouter* router, const tRoute* route) {
  router->counts.unprogrammed += route->state == kSimulatorRouteProgrammed ? 1 : 0;
  router->counts.released += route->state != kSimulatorRouteCalculated ? 1 : 0;
  ++router->counts.gone;
  --router->count;
  for (uint32_t i = (uint32_t)(route - router->routes); i < router->count; ++i) {
    router->routes[i] = router->routes[i + 1];
  }
}

void routerRemoveSession(tRouter* router, uint64_t session) {
  uint32_t index = 0;
  while (index < router->count) {
    if (router->routes[index].session.file == session) {
      routerRemove(router, &router->routes[index]);
    } else {
      ++index;
    }
  }
}
