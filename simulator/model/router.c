#include "simulator/model/router.h"

#include <stddef.h>

#include "protocol/routingrequests.h"
#include "simulator/model/bytes.h"
#include "simulator/model/model.h"

/* ---- Terminals ---- */

enum {
  kFloat = 1,
  kTriggerConnector = 2,
  kWatchdog = 3
};

/* The watchdog accepts one polarity only; every other terminal has an inverter at its input. */
typedef struct tTerminal {
  bool isSource;
  bool isDestination;
  bool canBeInverted;
  uint32_t restingSource;
} tTerminal;

static const tTerminal kOwnTerminals[] = {
    [kFloat] = {false, false, false, kFloat},
    [kTriggerConnector] = {true, true, true, kWatchdog},
    [kWatchdog] = {true, true, false, kFloat},
};
static const tTerminal kLine = {true, true, true, kFloat};

static const tTerminal* terminalOf(uint32_t terminal) {
  if (terminal >= kRouterFirstLine && terminal <= kRouterTerminalCount) {
    return &kLine;
  }
  return terminal >= kFloat && terminal < kRouterFirstLine ? &kOwnTerminals[terminal] : NULL;
}

bool isTerminal(uint32_t terminal) {
  return terminalOf(terminal) != NULL;
}

bool canBeRouted(uint32_t source, uint32_t destination, bool inverts) {
  const tTerminal* from = terminalOf(source);
  const tTerminal* to = terminalOf(destination);
  return from != NULL && to != NULL && from->isSource && to->isDestination &&
         source != destination && (!inverts || to->canBeInverted);
}

uint32_t costOf(uint32_t source, uint32_t destination, bool inverts) {
  const bool crossesLines = source >= kRouterFirstLine && destination >= kRouterFirstLine;
  return (crossesLines ? 2u : 1u) + (inverts ? 1u : 0u);
}

uint32_t restingSource(uint32_t terminal, bool floating) {
  return floating ? (uint32_t)kFloat : terminalOf(terminal)->restingSource;
}

/* ---- Routes ---- */

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

static tRoute* findTicket(tRouter* router, uint32_t ticket) {
  for (uint32_t i = 0; i < router->count; ++i) {
    if (router->routes[i].ticket == ticket) {
      return &router->routes[i];
    }
  }
  return NULL;
}

tRoute* routerFind(tRouter* router, uint64_t session, uint32_t ticket) {
  tRoute* found = findTicket(router, ticket);
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

/* ---- Demotion ---- */

static void releaseLine(tRouter* router, tRoute* route) {
  router->counts.unprogrammed += route->state == kSimulatorRouteProgrammed ? 1 : 0;
  ++router->counts.demoted;
  route->state = kSimulatorRouteCalculated;
}

static void notifyDemotion(tModel* model, const tRoute* route) {
  tSimulatorNotice notice;
  fillWithZeros(&notice, sizeof(notice));
  notice.file = route->session.file;
  notice.mask = ROUTING_NOTIFICATION_DEMOTED;
  notice.payloadSize = sizeof(route->ticket);
  copyBytes(notice.payload, &route->ticket, sizeof(route->ticket));
  notify(model, &notice);
}

bool demoteRoute(tModel* model, uint32_t ticket) {
  tRoute* route = findTicket(&model->router, ticket);
  if (route == NULL || route->state == kSimulatorRouteCalculated) {
    return false;
  }
  releaseLine(&model->router, route);
  notifyDemotion(model, route);
  return true;
}
