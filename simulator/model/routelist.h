/* The routes of the simulated trigger router: a list of fixed capacity, oldest first. */
#ifndef SIMULATOR_MODEL_ROUTELIST_H
#define SIMULATOR_MODEL_ROUTELIST_H

#include "simulator/model/modelfile.h"

typedef struct tRoute {
  tModelFile session; /* the open file that created it */
  uint32_t ticket;    /* ascending, never reused */
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
  uint32_t pathLength; /* the number of terminals in every path; 0: the real number */
  char topographyName[SIMULATOR_TOPOGRAPHY_NAME_CAPACITY];
  uint32_t topographyNameSize;
  tRouteCounts counts;
  tRoute routes[SIMULATOR_ROUTE_CAPACITY];
} tRouter;

/* Removes all routes and restores the default name and path length. Tickets and counts continue. */
void routerClear(tRouter* router);
/* Null if the list is full. */
tRoute* routerAdd(tRouter* router, const tRoute* route);
/* Null if the session has no such route. */
tRoute* routerFind(tRouter* router, uint64_t session, uint32_t ticket);
/* Searches the routes of all sessions. */
tRoute* routerFindTicket(tRouter* router, uint32_t ticket);
/* Moves to the next or the previous state. */
void routerMove(tRouter* router, tRoute* route, tSimulatorRouteState to);
/* Releases the line of a route that holds one. */
void routerDemote(tRouter* router, tRoute* route);
void routerRemove(tRouter* router, const tRoute* route);
/* Removes all routes of a session. */
void routerRemoveSession(tRouter* router, uint64_t session);

#endif
