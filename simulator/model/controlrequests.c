/* The requests of the control interface. */
#include <stddef.h>

#include "simulator/model/bytes.h"
#include "simulator/model/model.h"
#include "simulator/model/requests.h"

enum {
  kMaxControllers = 2,
  kMaxMartens = 2,
  kMaxDevicePaths = 1
};

static tModelReply replyWith(const tModelRequest* request, const void* bytes, uint32_t size) {
  if (request->outputSize < size) {
    return emptyReply(kWindowsErrorInsufficientBuffer);
  }
  copyBytes(request->output, bytes, size);
  return (tModelReply){kWindowsErrorNone, size};
}

static tModelReply successOr(uint32_t windowsError, bool succeeded) {
  return emptyReply(succeeded ? (uint32_t)kWindowsErrorNone : windowsError);
}

/* ---- The machine and the presence of its interfaces ---- */

static bool areEqualPresences(const tSimulatorPresence* left, const tSimulatorPresence* right) {
  return left->controllers == right->controllers && left->martens == right->martens &&
         left->devicePaths == right->devicePaths;
}

static void changePresence(tModel* model, const tSimulatorPresence* presence) {
  if (!areEqualPresences(&model->presence, presence)) {
    model->presence = *presence;
    model->host.presenceChanged(model->host.context, &model->presence);
  }
}

static tModelReply reset(tModel* model, const tModelRequest* request) {
  (void)request;
  resetMachine(model);
  changePresence(model, &kDefaultPresence);
  return emptyReply(kWindowsErrorNone);
}

static tModelReply setPresence(tModel* model, const tModelRequest* request) {
  tSimulatorPresence presence;
  copyBytes(&presence, request->input, sizeof(presence));
  if (presence.controllers > kMaxControllers || presence.martens > kMaxMartens ||
      presence.devicePaths > kMaxDevicePaths) {
    return emptyReply(kWindowsErrorInvalidParameter);
  }
  changePresence(model, &presence);
  return emptyReply(kWindowsErrorNone);
}

static tModelReply getPresence(tModel* model, const tModelRequest* request) {
  return replyWith(request, &model->presence, sizeof(model->presence));
}

/* ---- SMBIOS and attributes ---- */

static tModelReply setTable(tModel* model, const tModelRequest* request) {
  return successOr(kWindowsErrorInvalidParameter,
                   handoverSetTable(&model->handover, request->input, request->inputSize));
}

static tModelReply getTable(tModel* model, const tModelRequest* request) {
  return replyWith(request, model->handover.table, model->handover.tableSize);
}

static tModelReply setVersionText(tModel* model, const tModelRequest* request) {
  return successOr(kWindowsErrorInvalidParameter,
                   handoverSetText(&model->handover, request->input, request->inputSize));
}

static bool hasAttributes(uint32_t interfaceKind) {
  return interfaceKind == kSimulatorInterfaceController ||
         interfaceKind == kSimulatorInterfaceMarten;
}

static tModelReply setAttribute(tModel* model, const tModelRequest* request) {
  tSimulatorAttribute attribute;
  copyBytes(&attribute, request->input, sizeof(attribute));
  if (!hasAttributes(attribute.interfaceKind) || attribute.size > SIMULATOR_VALUE_CAPACITY) {
    return emptyReply(kWindowsErrorInvalidParameter);
  }
  return successOr(kWindowsErrorNoSystemResources, attributesPut(&model->attributes, &attribute));
}

static tModelReply removeAttribute(tModel* model, const tModelRequest* request) {
  tSimulatorAttribute attribute;
  copyBytes(&attribute, request->input, sizeof(attribute));
  if (!hasAttributes(attribute.interfaceKind)) {
    return emptyReply(kWindowsErrorInvalidParameter);
  }
  attributesRemove(&model->attributes, attribute.interfaceKind, attribute.attribute);
  return emptyReply(kWindowsErrorNone);
}

static tModelReply setWritable(tModel* model, const tModelRequest* request, bool writable) {
  tSimulatorAttribute attribute;
  copyBytes(&attribute, request->input, sizeof(attribute));
  return successOr(kWindowsErrorInvalidParameter,
                   attributesSetWritable(&model->attributes, attribute.interfaceKind,
                                         attribute.attribute, writable));
}

static tModelReply clearAttributes(tModel* model, const tModelRequest* request) {
  (void)request;
  attributesClear(&model->attributes);
  return emptyReply(kWindowsErrorNone);
}

static tModelReply setAttributeAnswer(tModel* model, const tModelRequest* request) {
  tSimulatorAttributeAnswer answer;
  copyBytes(&answer, request->input, sizeof(answer));
  return successOr(
      kWindowsErrorInvalidParameter,
      answer.delay <= SIMULATOR_MAX_DELAY && attributesSetAnswer(&model->attributes, &answer));
}

static tModelReply setHandoverAnswer(tModel* model, const tModelRequest* request) {
  tSimulatorHandoverAnswer answer;
  copyBytes(&answer, request->input, sizeof(answer));
  if (answer.query.delay > SIMULATOR_MAX_DELAY || answer.values.delay > SIMULATOR_MAX_DELAY) {
    return emptyReply(kWindowsErrorInvalidParameter);
  }
  model->handover.answer = answer;
  model->handover.hasAnswer = true;
  return emptyReply(kWindowsErrorNone);
}

static tModelReply allowWrites(tModel* model, const tModelRequest* request) {
  return setWritable(model, request, true);
}

static tModelReply refuseWrites(tModel* model, const tModelRequest* request) {
  return setWritable(model, request, false);
}

/* ---- Scripts, log and counters ---- */

static tModelReply addScript(tModel* model, const tModelRequest* request) {
  tSimulatorScript script;
  copyBytes(&script, request->input, sizeof(script));
  if (!scriptIsValid(&script)) {
    return emptyReply(kWindowsErrorInvalidParameter);
  }
  return successOr(kWindowsErrorNoSystemResources, scriptsAdd(&model->scripts, &script));
}

static tModelReply clearScripts(tModel* model, const tModelRequest* request) {
  (void)request;
  scriptsClear(&model->scripts);
  return emptyReply(kWindowsErrorNone);
}

static tModelReply readLog(tModel* model, const tModelRequest* request) {
  uint64_t fromSequence;
  copyBytes(&fromSequence, request->input, sizeof(fromSequence));
  const uint32_t stored = logCountFrom(&model->log, fromSequence);
  const uint32_t capacity = request->outputSize / (uint32_t)sizeof(tSimulatorLogEntry);
  if (stored != 0 && capacity == 0) {
    return emptyReply(kWindowsErrorInsufficientBuffer);
  }
  const uint32_t count = smallerOf(stored, capacity);
  logCopyFrom(&model->log, fromSequence, count, request->output);
  return (tModelReply){kWindowsErrorNone, count * (uint32_t)sizeof(tSimulatorLogEntry)};
}

static tModelReply clearLog(tModel* model, const tModelRequest* request) {
  (void)request;
  logClear(&model->log);
  return emptyReply(kWindowsErrorNone);
}

static tModelReply readCounters(tModel* model, const tModelRequest* request) {
  const tNotificationCounts* notifications = &model->notifications.counts;
  const tRouteCounts* routes = &model->router.counts;
  const tSimulatorCounters counters = {.filesOpened = model->filesOpened,
                                       .filesClosed = model->filesClosed,
                                       .registrationsBegun = notifications->registered,
                                       .registrationsEnded = notifications->unregistered,
                                       .deliveriesArmed = notifications->armed,
                                       .deliveriesEnded = notifications->disarmed,
                                       .noticesRaised = notifications->raised,
                                       .noticesDelivered = notifications->delivered,
                                       .noticesDropped = notifications->dropped,
                                       .pendingBegun = model->pending.begun,
                                       .pendingEnded = model->pending.ended,
                                       .routesCalculated = routes->calculated,
                                       .routesGone = routes->gone,
                                       .reservationsBegun = routes->reserved,
                                       .reservationsEnded = routes->unreserved,
                                       .reservationsDemoted = routes->demoted,
                                       .reservationsReleased = routes->released,
                                       .programmingsBegun = routes->programmed,
                                       .programmingsEnded = routes->unprogrammed};
  return replyWith(request, &counters, sizeof(counters));
}

/* ---- Pending requests and notifications ---- */

static tModelReply setAcceptance(tModel* model, const tModelRequest* request) {
  uint32_t acceptance;
  copyBytes(&acceptance, request->input, sizeof(acceptance));
  if (acceptance > kSimulatorAcceptNever) {
    return emptyReply(kWindowsErrorInvalidParameter);
  }
  model->pending.acceptance = (tSimulatorAcceptance)acceptance;
  return emptyReply(kWindowsErrorNone);
}

static tModelReply acceptAllPending(tModel* model, const tModelRequest* request) {
  (void)request;
  acceptPending(model);
  return emptyReply(kWindowsErrorNone);
}

static tModelReply readPending(tModel* model, const tModelRequest* request) {
  const uint32_t capacity = request->outputSize / (uint32_t)sizeof(tSimulatorPendingRequest);
  const uint32_t count = smallerOf(model->pending.count, capacity);
  uint8_t* to = request->output;
  for (uint32_t i = 0; i < count; ++i) {
    const tPendingEntry* entry = &model->pending.entries[i];
    const tSimulatorPendingRequest record = {.process = entry->file.process,
                                             .file = entry->file.file,
                                             .handle = entry->handle,
                                             .b = entry->b,
                                             .interfaceKind = entry->file.interfaceKind,
                                             .a = entry->a,
                                             .c = entry->c};
    copyBytes(to, &record, sizeof(record));
    to += sizeof(record);
  }
  return (tModelReply){kWindowsErrorNone, count * (uint32_t)sizeof(tSimulatorPendingRequest)};
}

static tModelReply completeByHandle(tModel* model, const tModelRequest* request) {
  tSimulatorCompletion completion;
  copyBytes(&completion, request->input, sizeof(completion));
  if (completion.windowsError > UINT16_MAX || completion.windowsError == kWindowsErrorIoPending) {
    return emptyReply(kWindowsErrorInvalidParameter);
  }
  return successOr(kWindowsErrorNotFound,
                   completePending(model, completion.handle, completion.windowsError));
}

static tModelReply notifyRegistered(tModel* model, const tModelRequest* request) {
  tSimulatorNotice notice;
  copyBytes(&notice, request->input, sizeof(notice));
  return successOr(kWindowsErrorNotFound, notify(model, &notice) != 0);
}

/* ---- The router ---- */

static tModelReply demote(tModel* model, const tModelRequest* request) {
  uint32_t ticket;
  copyBytes(&ticket, request->input, sizeof(ticket));
  return successOr(kWindowsErrorNotFound, demoteRoute(model, ticket));
}

static tModelReply readRoutes(tModel* model, const tModelRequest* request) {
  const uint32_t capacity = request->outputSize / (uint32_t)sizeof(tSimulatorRoute);
  const uint32_t count = smallerOf(model->router.count, capacity);
  uint8_t* to = request->output;
  for (uint32_t i = 0; i < count; ++i) {
    const tRoute* route = &model->router.routes[i];
    const tSimulatorRoute record = {.process = route->session.process,
                                    .session = route->session.file,
                                    .ticket = route->ticket,
                                    .source = route->source,
                                    .destination = route->destination,
                                    .state = route->state,
                                    .inverts = route->inverts};
    copyBytes(to, &record, sizeof(record));
    to += sizeof(record);
  }
  return (tModelReply){kWindowsErrorNone, count * (uint32_t)sizeof(tSimulatorRoute)};
}

static tModelReply setPathLength(tModel* model, const tModelRequest* request) {
  uint32_t length;
  copyBytes(&length, request->input, sizeof(length));
  if (length == 1) {
    return emptyReply(kWindowsErrorInvalidParameter);
  }
  model->router.pathLength = length;
  return emptyReply(kWindowsErrorNone);
}

static tModelReply setTopographyName(tModel* model, const tModelRequest* request) {
  if (request->inputSize > SIMULATOR_TOPOGRAPHY_NAME_CAPACITY) {
    return emptyReply(kWindowsErrorInvalidParameter);
  }
  copyBytes(model->router.topographyName, request->input, request->inputSize);
  model->router.topographyNameSize = request->inputSize;
  return emptyReply(kWindowsErrorNone);
}

/* ---- Received firmware ---- */

static tModelReply readFirmware(tModel* model, const tModelRequest* request) {
  const uint32_t count = firmwareCount(&model->firmware);
  const uint32_t size = count * (uint32_t)sizeof(tSimulatorPayload);
  if (request->outputSize < size) {
    return emptyReply(kWindowsErrorInsufficientBuffer);
  }
  firmwareCopy(&model->firmware, count, request->output);
  return (tModelReply){kWindowsErrorNone, size};
}

static tModelReply clearFirmware(tModel* model, const tModelRequest* request) {
  (void)request;
  firmwareClear(&model->firmware);
  return emptyReply(kWindowsErrorNone);
}

/* ---- The table of requests ---- */

#define NO_INPUT 0u
#define VARIABLE_INPUT UINT32_MAX

typedef struct tControlRequest {
  uint32_t code;
  uint32_t inputSize; /* exactly, or VARIABLE_INPUT */
  tModelReply (*carryOut)(tModel* model, const tModelRequest* request);
} tControlRequest;

static const tControlRequest kControlRequests[] = {
    {SIMULATOR_RESET, NO_INPUT, reset},
    {SIMULATOR_SET_PRESENCE, sizeof(tSimulatorPresence), setPresence},
    {SIMULATOR_GET_PRESENCE, NO_INPUT, getPresence},
    {SIMULATOR_SET_TABLE, VARIABLE_INPUT, setTable},
    {SIMULATOR_GET_TABLE, NO_INPUT, getTable},
    {SIMULATOR_SET_VERSION_TEXT, VARIABLE_INPUT, setVersionText},
    {SIMULATOR_SET_ATTRIBUTE, sizeof(tSimulatorAttribute), setAttribute},
    {SIMULATOR_REMOVE_ATTRIBUTE, sizeof(tSimulatorAttribute), removeAttribute},
    {SIMULATOR_ALLOW_WRITES, sizeof(tSimulatorAttribute), allowWrites},
    {SIMULATOR_REFUSE_WRITES, sizeof(tSimulatorAttribute), refuseWrites},
    {SIMULATOR_ADD_SCRIPT, sizeof(tSimulatorScript), addScript},
    {SIMULATOR_CLEAR_SCRIPTS, NO_INPUT, clearScripts},
    {SIMULATOR_READ_LOG, sizeof(uint64_t), readLog},
    {SIMULATOR_CLEAR_LOG, NO_INPUT, clearLog},
    {SIMULATOR_CLEAR_ATTRIBUTES, NO_INPUT, clearAttributes},
    {SIMULATOR_SET_ATTRIBUTE_ANSWER, sizeof(tSimulatorAttributeAnswer), setAttributeAnswer},
    {SIMULATOR_SET_HANDOVER_ANSWER, sizeof(tSimulatorHandoverAnswer), setHandoverAnswer},
    {SIMULATOR_READ_COUNTERS, NO_INPUT, readCounters},
    {SIMULATOR_SET_ACCEPTANCE, sizeof(uint32_t), setAcceptance},
    {SIMULATOR_ACCEPT_PENDING, NO_INPUT, acceptAllPending},
    {SIMULATOR_READ_PENDING, NO_INPUT, readPending},
    {SIMULATOR_COMPLETE_PENDING, sizeof(tSimulatorCompletion), completeByHandle},
    {SIMULATOR_NOTIFY, sizeof(tSimulatorNotice), notifyRegistered},
    {SIMULATOR_DEMOTE_ROUTE, sizeof(uint32_t), demote},
    {SIMULATOR_READ_ROUTES, NO_INPUT, readRoutes},
    {SIMULATOR_SET_PATH_LENGTH, sizeof(uint32_t), setPathLength},
    {SIMULATOR_SET_TOPOGRAPHY_NAME, VARIABLE_INPUT, setTopographyName},
    {SIMULATOR_READ_FIRMWARE, NO_INPUT, readFirmware},
    {SIMULATOR_CLEAR_FIRMWARE, NO_INPUT, clearFirmware},
};

tModelReply answerControlRequest(tModel* model, const tModelRequest* request) {
  for (size_t i = 0; i < sizeof(kControlRequests) / sizeof(kControlRequests[0]); ++i) {
    const tControlRequest* known = &kControlRequests[i];
    if (known->code == request->code) {
      return known->inputSize == VARIABLE_INPUT || known->inputSize == request->inputSize
                 ? known->carryOut(model, request)
                 : emptyReply(kWindowsErrorInvalidParameter);
    }
  }
  return emptyReply(kWindowsErrorInvalidFunction);
}
