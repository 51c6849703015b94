/* The state of the simulated trigger router: its terminals and the connections that it can make, and
 * the routes of all sessions. Its requests are in requests.h. */
#ifndef SIMULATOR_MODEL_ROUTER_H
#define SIMULATOR_MODEL_ROUTER_H

#include "simulator/model/host.h"

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

enum {
  kRouterFirstLine = 4, /* the trigger lines are the last terminals */
  kRouterLineCount = 8,
  kRouterTerminalCount = kRouterFirstLine + kRouterLineCount - 1
};

/* A list of fixed capacity, oldest first. */
typedef struct tRouter {
  uint32_t nextTicket;
  uint32_t count;
  uint32_t pathLength; /* the number of terminals in every path; 0: the real number */
  char topographyName[SIMULATOR_TOPOGRAPHY_NAME_CAPACITY];
  uint32_t topographyNameSize;
  tRouteCounts counts;
  tRoute routes[SIMULATOR_ROUTE_CAPACITY];
} tRouter;

/* Terminals are numbered from 1 to kRouterTerminalCount. */
bool isTerminal(uint32_t terminal);
/* False for the floating terminal, which is neither source nor destination. */
bool canBeRouted(uint32_t source, uint32_t destination, bool inverts);
/* The cost that a route adds to the cost of its seed. */
uint32_t costOf(uint32_t source, uint32_t destination, bool inverts);
/* The terminal that drives this one without a route. */
uint32_t restingSource(uint32_t terminal, bool floating);

/* Removes all routes and restores the default name and path length. Tickets and counts continue. */
void routerClear(tRouter* router);
/* Null if the list is full. */
tRoute* routerAdd(tRouter* router, const tRoute* route);
/* Null if the session has no such route. */
tRoute* routerFind(tRouter* router, uint64_t session, uint32_t ticket);
/* Moves to the next or the previous state. */
void routerMove(tRouter* router, tRoute* route, tSimulatorRouteState to);
void routerRemove(tRouter* router, const tRoute* route);
/* Removes all routes of a session. */
void routerRemoveSession(tRouter* router, uint64_t session);

/* Demotes a reserved or programmed route: removes its line and notifies its session. False if the
 * route does not exist or holds no line. */
bool demoteRoute(tModel* model, uint32_t ticket);

#endif
