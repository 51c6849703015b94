#include "simulator/model/routerequests.h"

#include "protocol/routingrequests.h"
#include "simulator/model/bytes.h"
#include "simulator/model/notifications.h"
#include "simulator/model/routecalculation.h"
#include "simulator/model/terminals.h"

enum {
  kTerminals = 11
};

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

void carryOutCountTerminals(tModel* model, const tModelFile* file, const void* input, void* reply) {
  (void)model;
  (void)file;
  (void)input;
  answerValue(reply, kTerminals, 0);
}

/* ---- States of a route ---- */

/* Moves a route to an adjacent state; rejects requests out of order. */
static int32_t step(tModel* model, const tModelFile* file, const void* input,
                    tSimulatorRouteState from, tSimulatorRouteState to) {
  tTicketRequest asked;
  copyBytes(&asked, input, sizeof(asked));
  tRoute* route = routerFind(&model->router, file->file, asked.ticket);
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
  tTicketRequest asked;
  copyBytes(&asked, input, sizeof(asked));
  const tRoute* route = routerFind(&model->router, file->file, asked.ticket);
  if (route == NULL) {
    answerStatus(reply, SIMULATOR_STATUS_NO_SUCH_TICKET);
  } else {
    routerRemove(&model->router, route);
    answerStatus(reply, 0);
  }
}

static int32_t reserve(tModel* model, const tModelFile* file, const tTicketListRequest* asked,
                       uint32_t* conflicts) {
  tRoute* route = routerFind(&model->router, file->file, asked->ticket);
  if (route == NULL) {
    return SIMULATOR_STATUS_NO_SUCH_TICKET;
  }
  if (route->state != kSimulatorRouteCalculated) {
    return SIMULATOR_STATUS_WRONG_ORDER;
  }
  bool reachable = true;
  *conflicts = findConflicts(model, route, asked->buffer, asked->count, &reachable);
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
  tTicketListRequest asked;
  copyBytes(&asked, input, sizeof(asked));
  uint32_t conflicts = 0;
  const int32_t status = reserve(model, file, &asked, &conflicts);
  answerList(reply, conflicts, status);
}

/* ---- Paths ---- */

/* A path of `length` terminals: the source, trigger lines in turn, the destination. */
static uint32_t terminalOfPath(const tRoute* route, uint32_t index, uint32_t length) {
  if (index == 0) {
    return route->source;
  }
  return index == length - 1 ? route->destination : 4 + (index - 1) % 8;
}

static bool writePath(const tModel* model, const tRoute* route, uint64_t to, uint32_t length) {
  for (uint32_t i = 0; i < length; ++i) {
    const uint32_t terminal = terminalOfPath(route, i, length);
    if (!model->host.writeCaller(model->host.context, route->session.process,
                                 to + i * sizeof(terminal), &terminal, sizeof(terminal))) {
      return false;
    }
  }
  return true;
}

void carryOutGetPath(tModel* model, const tModelFile* file, const void* input, void* reply) {
  tTicketListRequest asked;
  copyBytes(&asked, input, sizeof(asked));
  const tRoute* route = routerFind(&model->router, file->file, asked.ticket);
  if (route == NULL) {
    answerList(reply, 0, SIMULATOR_STATUS_NO_SUCH_TICKET);
    return;
  }
  const uint32_t length = model->router.pathLength == 0 ? 2 : model->router.pathLength;
  if (asked.count < length) {
    answerList(reply, length, DRIVER_STATUS_PATH_TOO_LONG);
  } else {
    answerList(reply, length,
               writePath(model, route, asked.buffer, length) ? 0 : SIMULATOR_STATUS_BAD_ADDRESS);
  }
}

/* ---- The topography and its terminals ---- */

void carryOutGetTopographyName(tModel* model, const tModelFile* file, const void* input,
                               void* reply) {
  tGetTopographyNameRequest asked;
  copyBytes(&asked, input, sizeof(asked));
  const uint32_t size = smallerOf(asked.size, model->router.topographyNameSize);
  const bool written =
      size == 0 || model->host.writeCaller(model->host.context, file->process, asked.buffer,
                                           model->router.topographyName, size);
  answerStatus(reply, written ? 0 : SIMULATOR_STATUS_BAD_ADDRESS);
}

static void tellDemotion(tModel* model, const tRoute* route) {
  tSimulatorNotice notice;
  fillWithZeros(&notice, sizeof(notice));
  notice.file = route->session.file;
  notice.mask = ROUTING_NOTIFICATION_DEMOTED;
  notice.payloadSize = sizeof(route->ticket);
  copyBytes(notice.payload, &route->ticket, sizeof(route->ticket));
  notify(model, &notice);
}

bool demoteRoute(tModel* model, uint32_t ticket) {
  tRoute* route = routerFindTicket(&model->router, ticket);
  if (route == NULL || route->state == kSimulatorRouteCalculated) {
    return false;
  }
  routerDemote(&model->router, route);
  tellDemotion(model, route);
  return true;
}

/* Demotes the programmed routes that drive the terminal. */
void carryOutResetTerminal(tModel* model, const tModelFile* file, const void* input, void* reply) {
  (void)file;
  tResetTerminalRequest asked;
  copyBytes(&asked, input, sizeof(asked));
  if (!isTerminal(asked.terminal)) {
    answerStatus(reply, SIMULATOR_STATUS_NO_SUCH_TERMINAL);
    return;
  }
  for (uint32_t i = 0; i < model->router.count; ++i) {
    const tRoute* route = &model->router.routes[i];
    if (route->destination == asked.terminal && route->state == kSimulatorRouteProgrammed) {
      demoteRoute(model, route->ticket);
    }
  }
  answerStatus(reply, 0);
}

void carryOutCalculateReset(tModel* model, const tModelFile* file, const void* input, void* reply) {
  (void)model;
  (void)file;
  tCalculateResetTerminalRequest asked;
  copyBytes(&asked, input, sizeof(asked));
  if (isTerminal(asked.terminal)) {
    answerValue(reply, restingSource(asked.terminal, asked.floating != 0), 0);
  } else {
    answerValue(reply, 0, SIMULATOR_STATUS_NO_SUCH_TERMINAL);
  }
}
