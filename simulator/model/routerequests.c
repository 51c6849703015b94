/* The requests of the trigger-routing interface. */
#include <stddef.h>

#include "protocol/controllerrequests.h"
#include "protocol/routingrequests.h"
#include "simulator/model/bytes.h"
#include "simulator/model/requests.h"

static void answerStatus(void* reply, int32_t status) {
  const tStatusReply answer = {status};
  copyBytes(reply, &answer, sizeof(answer));
}

static void answerValue(void* reply, uint32_t value, int32_t status) {
  const tRoutingValueReply answer = {value, status};
  copyBytes(reply, &answer, sizeof(answer));
}

static void answerList(void* reply, uint32_t count, int32_t status) {
  const tTicketListReply answer = {count, status};
  copyBytes(reply, &answer, sizeof(answer));
}

static bool excludesEachOther(const tRoute* held, const tRoute* wanted) {
  return held->state != kSimulatorRouteCalculated && held->ticket != wanted->ticket &&
         held->destination == wanted->destination &&
         (held->source != wanted->source || held->inverts != wanted->inverts);
}

/* Finds the routes that hold the destination of `wanted`. Writes at most `capacity` records to the
 * caller's address `to` and returns the number of conflicts. A capacity of 0 only counts them. */
static uint32_t findConflicts(tModel* model, const tRoute* wanted, uint64_t to, uint32_t capacity,
                              bool* reachable) {
  uint32_t count = 0;
  *reachable = true;
  for (uint32_t i = 0; i < model->router.count; ++i) {
    const tRoute* held = &model->router.routes[i];
    if (!excludesEachOther(held, wanted)) {
      continue;
    }
    if (count < capacity) {
      const tRouteConflict conflict = {held->session.file, held->ticket, 0};
      *reachable = *reachable && writeToCaller(&model->host, &wanted->session,
                                               to + (uint64_t)count * sizeof(conflict), &conflict,
                                               sizeof(conflict));
    }
    ++count;
  }
  return count;
}

/* ---- Calculation ---- */

/* Extra cost of a line that is reserved, so that a free line is preferred. */
enum {
  kReservedLineCost = 1000
};

/* The state of a calculation: the request, and the number of routes found so far. */
typedef struct tCalculation {
  tModel* model;
  const tModelFile* session;
  tCalculateRouteRequest request;
  tRouteModifiers modifiers;
  uint32_t found;
  int32_t status;
} tCalculation;

typedef struct tCandidate {
  uint32_t source;
  uint32_t seed;
  uint32_t cost;
  bool exists;
} tCandidate;

static bool readRecord(const tCalculation* calculation, uint64_t list, uint32_t index, void* record,
                       uint32_t size) {
  return readFromCaller(&calculation->model->host, calculation->session,
                        list + (uint64_t)index * size, record, size);
}

static uint32_t fullCost(const tCalculation* calculation, const tRouteSeed* seed,
                         uint32_t destination, bool inverts) {
  const tRoute wanted = {.session = *calculation->session,
                         .source = seed->terminal,
                         .destination = destination,
                         .inverts = inverts};
  bool reachable = true;
  const bool respectsReservations =
      (calculation->request.options & ROUTE_OPTION_IGNORE_RESERVATIONS) == 0;
  const bool isReserved =
      respectsReservations && findConflicts(calculation->model, &wanted, 0, 0, &reachable) != 0;
  const uint64_t cost = (uint64_t)seed->cost + costOf(seed->terminal, destination, inverts) +
                        (isReserved ? kReservedLineCost : 0);
  return cost > UINT32_MAX ? UINT32_MAX : (uint32_t)cost;
}

/* The cheapest route to a destination; of several with the same cost, that of the first seed. */
static tCandidate cheapest(tCalculation* calculation, uint32_t destination, bool inverts) {
  tCandidate best = {0, 0, 0, false};
  for (uint32_t i = 0; i < calculation->request.seedCount; ++i) {
    tRouteSeed seed;
    if (!readRecord(calculation, calculation->request.seeds, i, &seed, sizeof(seed))) {
      calculation->status = SIMULATOR_STATUS_BAD_ADDRESS;
      return best;
    }
    if (!isTerminal(seed.terminal)) {
      calculation->status = SIMULATOR_STATUS_NO_SUCH_TERMINAL;
      return best;
    }
    /* A route that does not invert cannot start at a seed that needs inversion. */
    const bool fits = inverts || (seed.constraints & ROUTE_CONSTRAINT_INVERSION_NEEDED) == 0;
    if (fits && canBeRouted(seed.terminal, destination, inverts)) {
      const uint32_t cost = fullCost(calculation, &seed, destination, inverts);
      if (!best.exists || cost < best.cost) {
        best = (tCandidate){seed.terminal, i, cost, true};
      }
    }
  }
  return best;
}

static void addRoute(tCalculation* calculation, uint32_t destination, bool inverts) {
  const tCandidate best = cheapest(calculation, destination, inverts);
  if (calculation->status < 0 || !best.exists ||
      calculation->found == calculation->request.routeCapacity) {
    return;
  }
  const tRoute route = {.session = *calculation->session,
                        .source = best.source,
                        .destination = destination,
                        .state = kSimulatorRouteCalculated,
                        .inverts = inverts};
  const tRoute* added = routerAdd(&calculation->model->router, &route);
  if (added == NULL) {
    calculation->status = SIMULATOR_STATUS_TOO_MANY_ROUTES;
    return;
  }
  const tRouteRecord record = {added->ticket, destination, best.cost,
                               best.seed,     inverts,     {0, 0, 0}};
  const uint64_t address = calculation->request.routes + calculation->found * sizeof(record);
  if (!writeToCaller(&calculation->model->host, calculation->session, address, &record,
                     sizeof(record))) {
    routerRemove(&calculation->model->router, added);
    calculation->status = SIMULATOR_STATUS_BAD_ADDRESS;
    return;
  }
  ++calculation->found;
}

/* Plain unless inversion is required; inverting if required, optional, or without a plain route. */
static void addRoutesTo(tCalculation* calculation, uint32_t destination) {
  const bool required = (calculation->modifiers.required & ROUTE_CONSTRAINT_INVERSION_NEEDED) != 0;
  const bool wanted =
      required || (calculation->modifiers.optional & ROUTE_CONSTRAINT_INVERSION_NEEDED) != 0;
  const uint32_t before = calculation->found;
  if (!required) {
    addRoute(calculation, destination, false);
  }
  if (wanted || (calculation->found == before && calculation->status >= 0)) {
    addRoute(calculation, destination, true);
  }
}

/* Removes the routes that a failed calculation has added. */
static void removeAddedRoutes(tCalculation* calculation) {
  tRouter* router = &calculation->model->router;
  for (; calculation->found != 0; --calculation->found) {
    routerRemove(router, &router->routes[router->count - 1]);
  }
}

static void calculate(tCalculation* calculation) {
  if (!readRecord(calculation, calculation->request.modifiers, 0, &calculation->modifiers,
                  sizeof(calculation->modifiers))) {
    calculation->status = SIMULATOR_STATUS_BAD_ADDRESS;
  }
  for (uint32_t i = 0; i < calculation->request.destinationCount && calculation->status >= 0; ++i) {
    uint32_t destination;
    if (!readRecord(calculation, calculation->request.destinations, i, &destination,
                    sizeof(destination))) {
      calculation->status = SIMULATOR_STATUS_BAD_ADDRESS;
    } else if (!isTerminal(destination)) {
      calculation->status = SIMULATOR_STATUS_NO_SUCH_TERMINAL;
    } else {
      addRoutesTo(calculation, destination);
    }
  }
  if (calculation->status < 0) {
    removeAddedRoutes(calculation);
  }
}

void carryOutCalculateRoute(tModel* model, const tModelFile* file, const void* input, void* reply) {
  tCalculation calculation = {.model = model, .session = file};
  copyBytes(&calculation.request, input, sizeof(calculation.request));
  calculate(&calculation);
  const tCalculateRouteReply answer = {calculation.found, calculation.found, calculation.status};
  copyBytes(reply, &answer, sizeof(answer));
}

/* ---- States of a route ---- */

/* Moves a route to an adjacent state; rejects requests out of order. */
static int32_t step(tModel* model, const tModelFile* file, const void* input,
                    tSimulatorRouteState from, tSimulatorRouteState to) {
  tTicketRequest request;
  copyBytes(&request, input, sizeof(request));
  tRoute* route = routerFind(&model->router, file->file, request.ticket);
  if (route == NULL) {
    return SIMULATOR_STATUS_NO_SUCH_TICKET;
  }
  if (route->state != from) {
    return SIMULATOR_STATUS_WRONG_ORDER;
  }
  routerMove(&model->router, route, to);
  return 0;
}

void carryOutProgramRoute(tModel* model, const tModelFile* file, const void* input, void* reply) {
  answerStatus(reply, step(model, file, input, kSimulatorRouteReserved, kSimulatorRouteProgrammed));
}

void carryOutUnprogramRoute(tModel* model, const tModelFile* file, const void* input, void* reply) {
  answerStatus(reply, step(model, file, input, kSimulatorRouteProgrammed, kSimulatorRouteReserved));
}

void carryOutUnreserveRoute(tModel* model, const tModelFile* file, const void* input, void* reply) {
  answerStatus(reply, step(model, file, input, kSimulatorRouteReserved, kSimulatorRouteCalculated));
}

/* Allowed in any state: destroyRoute cannot report failure. */
void carryOutDestroyRoute(tModel* model, const tModelFile* file, const void* input, void* reply) {
  tTicketRequest request;
  copyBytes(&request, input, sizeof(request));
  const tRoute* route = routerFind(&model->router, file->file, request.ticket);
  if (route == NULL) {
    answerStatus(reply, SIMULATOR_STATUS_NO_SUCH_TICKET);
  } else {
    routerRemove(&model->router, route);
    answerStatus(reply, 0);
  }
}

static int32_t reserve(tModel* model, const tModelFile* file, const tTicketListRequest* request,
                       uint32_t* conflicts) {
  tRoute* route = routerFind(&model->router, file->file, request->ticket);
  if (route == NULL) {
    return SIMULATOR_STATUS_NO_SUCH_TICKET;
  }
  if (route->state != kSimulatorRouteCalculated) {
    return SIMULATOR_STATUS_WRONG_ORDER;
  }
  bool reachable = true;
  *conflicts = findConflicts(model, route, request->buffer, request->count, &reachable);
  if (!reachable) {
    return SIMULATOR_STATUS_BAD_ADDRESS;
  }
  if (*conflicts != 0) {
    return DRIVER_STATUS_ROUTE_CONFLICT;
  }
  routerMove(&model->router, route, kSimulatorRouteReserved);
  return 0;
}

void carryOutReserveRoute(tModel* model, const tModelFile* file, const void* input, void* reply) {
  tTicketListRequest request;
  copyBytes(&request, input, sizeof(request));
  uint32_t conflicts = 0;
  const int32_t status = reserve(model, file, &request, &conflicts);
  answerList(reply, conflicts, status);
}

/* ---- Paths ---- */

/* A path of `length` terminals: the source, trigger lines in turn, the destination. */
static uint32_t terminalOfPath(const tRoute* route, uint32_t index, uint32_t length) {
  if (index == 0) {
    return route->source;
  }
  return index == length - 1 ? route->destination
                             : kRouterFirstLine + (index - 1) % kRouterLineCount;
}

static bool writePath(const tModel* model, const tRoute* route, uint64_t to, uint32_t length) {
  for (uint32_t i = 0; i < length; ++i) {
    const uint32_t terminal = terminalOfPath(route, i, length);
    if (!writeToCaller(&model->host, &route->session, to + i * sizeof(terminal), &terminal,
                       sizeof(terminal))) {
      return false;
    }
  }
  return true;
}

void carryOutGetPath(tModel* model, const tModelFile* file, const void* input, void* reply) {
  tTicketListRequest request;
  copyBytes(&request, input, sizeof(request));
  const tRoute* route = routerFind(&model->router, file->file, request.ticket);
  if (route == NULL) {
    answerList(reply, 0, SIMULATOR_STATUS_NO_SUCH_TICKET);
    return;
  }
  const uint32_t length = model->router.pathLength == 0 ? 2 : model->router.pathLength;
  if (request.count < length) {
    answerList(reply, length, DRIVER_STATUS_PATH_TOO_LONG);
  } else {
    answerList(reply, length,
               writePath(model, route, request.buffer, length) ? 0 : SIMULATOR_STATUS_BAD_ADDRESS);
  }
}

/* ---- The topography and its terminals ---- */

void carryOutCountTerminals(tModel* model, const tModelFile* file, const void* input, void* reply) {
  (void)model;
  (void)file;
  (void)input;
  answerValue(reply, kRouterTerminalCount, 0);
}

void carryOutGetTopographyName(tModel* model, const tModelFile* file, const void* input,
                               void* reply) {
  tGetTopographyNameRequest request;
  copyBytes(&request, input, sizeof(request));
  const uint32_t size = smallerOf(request.size, model->router.topographyNameSize);
  const bool written =
      writeToCaller(&model->host, file, request.buffer, model->router.topographyName, size);
  answerStatus(reply, written ? 0 : SIMULATOR_STATUS_BAD_ADDRESS);
}

/* Demotes the programmed routes that drive the terminal. */
void carryOutResetTerminal(tModel* model, const tModelFile* file, const void* input, void* reply) {
  (void)file;
  tResetTerminalRequest request;
  copyBytes(&request, input, sizeof(request));
  if (!isTerminal(request.terminal)) {
    answerStatus(reply, SIMULATOR_STATUS_NO_SUCH_TERMINAL);
    return;
  }
  for (uint32_t i = 0; i < model->router.count; ++i) {
    const tRoute* route = &model->router.routes[i];
    if (route->destination == request.terminal && route->state == kSimulatorRouteProgrammed) {
      demoteRoute(model, route->ticket);
    }
  }
  answerStatus(reply, 0);
}

void carryOutCalculateReset(tModel* model, const tModelFile* file, const void* input, void* reply) {
  (void)model;
  (void)file;
  tCalculateResetTerminalRequest request;
  copyBytes(&request, input, sizeof(request));
  if (isTerminal(request.terminal)) {
    answerValue(reply, restingSource(request.terminal, request.floating != 0), 0);
  } else {
    answerValue(reply, 0, SIMULATOR_STATUS_NO_SUCH_TERMINAL);
  }
}
