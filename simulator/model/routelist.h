/* The routes that the simulated trigger router knows: a list of fixed capacity, oldest first. */
#ifndef SIMULATOR_MODEL_ROUTELIST_H
#define SIMULATOR_MODEL_ROUTELIST_H

#include "simulator/model/modelfile.h"

typedef struct tRoute {
  tModelFile session; /* the open file that made it */
  uint32_t ticket;    /* counted up, never used twice */
  uint32_t source;
  uint32_t destination;
  tSimulatorRouteState state;
  bool inverts;
} tRoute;

typedef struct tRouteCounts {
  uint64_t calculated;
  uint64_t gone;
  uint64_t reserved;
  uint64_t unreserved;
  uint64_t demoted;
  uint64_t released;
  uint64_t programmed;
  uint64_t unprogrammed;
} tRouteCounts;

typedef struct tRouter {
  uint32_t nextTicket;
  uint32_t count;
  uint32_t pathLength; /* 0: as long as it is; else terminals in every path */
  char topographyName[SIMULATOR_TOPOGRAPHY_NAME_CAPACITY];
  uint32_t topographyNameSize;
  tRouteCounts counts;
  tRoute routes[SIMULATOR_ROUTE_CAPACITY];
} tRouter;

/* No routes, and the names and lengths of the default machine. Tickets and counts go on. */
void routerClear(tRouter* router);
/* Null when the list is full. */
tRoute* routerAdd(tRouter* router, const tRoute* route);
/* Null when the session has no such route. */
tRoute* routerFind(tRouter* router, uint64_t session, uint32_t ticket);
/* Whatever session it is of. */
tRoute* routerFindTicket(tRouter* router, uint32_t ticket);
/* To the next state or the one before. */
void routerMove(tRouter* router, tRoute* route, tSimulatorRouteState to);
/* Takes its line away from a route that holds one. */
void routerDemote(tRouter* router, tRoute* route);
void routerRemove(tRouter* router, const tRoute* route);
/* Everything that a session has made and holds. */
void routerRemoveSession(tRouter* router, uint64_t session);

#endif
