#include "simulator/model/routecalculation.h"

#include <stddef.h>

#include "protocol/routingrequests.h"
#include "simulator/model/bytes.h"
#include "simulator/model/terminals.h"

/* Extra cost of a line that is reserved, so that a free line is preferred. */
enum {
  kCostOfATakenLine = 1000
};

/* The state of a calculation: the request, and the number of routes found so far. */
typedef struct tCalculation {
  tModel* model;
  const tModelFile* session;
  tCalculateRouteRequest asked;
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
  const tModelHost* host = &calculation->model->host;
  return host->readCaller(host->context, calculation->session->process,
                          list + (uint64_t)index * size, record, size);
}

static bool excludesEachOther(const tRoute* held, const tRoute* wanted) {
  return held->state != kSimulatorRouteCalculated && held->ticket != wanted->ticket &&
         held->destination == wanted->destination &&
         (held->source != wanted->source || held->inverts != wanted->inverts);
}

uint32_t findConflicts(tModel* model, const tRoute* wanted, uint64_t to, uint32_t capacity,
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
      *reachable =
          *reachable && model->host.writeCaller(model->host.context, wanted->session.process,
                                                to + (uint64_t)count * sizeof(conflict), &conflict,
                                                sizeof(conflict));
    }
    ++count;
  }
  return count;
}

static uint32_t fullCost(const tCalculation* calculation, const tRouteSeed* seed,
                         uint32_t destination, bool inverts) {
  const tRoute wanted = {.session = *calculation->session,
                         .source = seed->terminal,
                         .destination = destination,
                         .inverts = inverts};
  bool reachable = true;
  const bool looks = (calculation->asked.options & ROUTE_OPTION_IGNORE_RESERVATIONS) == 0;
  const bool isTaken = looks && findConflicts(calculation->model, &wanted, 0, 0, &reachable) != 0;
  const uint64_t cost = (uint64_t)seed->cost + costOf(seed->terminal, destination, inverts) +
                        (isTaken ? kCostOfATakenLine : 0);
  return cost > UINT32_MAX ? UINT32_MAX : (uint32_t)cost;
}

/* The cheapest route to a destination; of several with the same cost, that of the first seed. */
static tCandidate cheapest(tCalculation* calculation, uint32_t destination, bool inverts) {
  tCandidate best = {0, 0, 0, false};
  for (uint32_t i = 0; i < calculation->asked.seedCount; ++i) {
    tRouteSeed seed;
    if (!readRecord(calculation, calculation->asked.seeds, i, &seed, sizeof(seed))) {
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
  const tCandidate way = cheapest(calculation, destination, inverts);
  if (calculation->status < 0 || !way.exists ||
      calculation->found == calculation->asked.routeCapacity) {
    return;
  }
  const tRoute route = {.session = *calculation->session,
                        .source = way.source,
                        .destination = destination,
                        .state = kSimulatorRouteCalculated,
                        .inverts = inverts};
  const tRoute* added = routerAdd(&calculation->model->router, &route);
  if (added == NULL) {
    calculation->status = SIMULATOR_STATUS_TOO_MANY_ROUTES;
    return;
  }
  const tRouteRecord record = {added->ticket, destination, way.cost, way.seed, inverts, {0, 0, 0}};
  const tModelHost* host = &calculation->model->host;
  if (!host->writeCaller(host->context, calculation->session->process,
                         calculation->asked.routes + calculation->found * sizeof(record), &record,
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
static void takeBack(tCalculation* calculation) {
  tRouter* router = &calculation->model->router;
  for (; calculation->found != 0; --calculation->found) {
    routerRemove(router, &router->routes[router->count - 1]);
  }
}

static void calculate(tCalculation* calculation) {
  if (!readRecord(calculation, calculation->asked.modifiers, 0, &calculation->modifiers,
                  sizeof(calculation->modifiers))) {
    calculation->status = SIMULATOR_STATUS_BAD_ADDRESS;
  }
  for (uint32_t i = 0; i < calculation->asked.destinationCount && calculation->status >= 0; ++i) {
    uint32_t destination;
    if (!readRecord(calculation, calculation->asked.destinations, i, &destination,
                    sizeof(destination))) {
      calculation->status = SIMULATOR_STATUS_BAD_ADDRESS;
    } else if (!isTerminal(destination)) {
      calculation->status = SIMULATOR_STATUS_NO_SUCH_TERMINAL;
    } else {
      addRoutesTo(calculation, destination);
    }
  }
  if (calculation->status < 0) {
    takeBack(calculation);
  }
}

void carryOutCalculateRoute(tModel* model, const tModelFile* file, const void* input, void* reply) {
  tCalculation calculation = {.model = model, .session = file};
  copyBytes(&calculation.asked, input, sizeof(calculation.asked));
  calculate(&calculation);
  const tCalculateRouteReply answer = {calculation.found, calculation.found, calculation.status};
  copyBytes(reply, &answer, sizeof(answer));
}
