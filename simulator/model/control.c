#include "simulator/model/control.h"

#include <stddef.h>

#include "simulator/model/bytes.h"
#include "simulator/model/counters.h"
#include "simulator/model/defaultmachine.h"
#include "simulator/model/notifications.h"
#include "simulator/model/pendingrequests.h"
#include "simulator/model/routerequests.h"
#include "simulator/model/windowserrors.h"

enum {
  kMostControllers = 2,
  kMostMartens = 2,
  kMostDevicePaths = 1
};

static tModelReply done(void) {
  return (tModelReply){kWindowsErrorNone, 0};
}

static tModelReply failed(uint32_t windowsError) {
  return (tModelReply){windowsError, 0};
}

static tModelReply answered(const tModelRequest* request, const void* bytes, uint32_t size) {
  if (request->outputSize < size) {
    return failed(kWindowsErrorInsufficientBuffer);
  }
  copyBytes(request->output, bytes, size);
  return (tModelReply){kWindowsErrorNone, size};
}

static bool readInput(const tModelRequest* request, void* destination, uint32_t size) {
  if (request->inputSize != size) {
    return false;
  }
  copyBytes(destination, request->input, size);
  return true;
}

static bool samePresence(const tSimulatorPresence* left, const tSimulatorPresence* right) {
  return left->controllers == right->controllers && left->martens == right->martens &&
         left->devicePaths == right->devicePaths;
}

static void changePresence(tModel* model, const tSimulatorPresence* presence) {
  if (!samePresence(&model->presence, presence)) {
    model->presence = *presence;
    model->host.presenceChanged(model->host.context, &model->presence);
  }
}

void resetMachine(tModel* model) {
  makeDefaultMachine(model);
  scriptsClear(&model->scripts);
  abortAllPending(model);
  abortAllNotifications(model);
  routerClear(&model->router);
  pendingClear(&model->pending);
  logClear(&model->log);
  firmwareClear(&model->firmware);
}

static tModelReply reset(tModel* model, const tModelRequest* request) {
  if (request->inputSize != 0) {
    return failed(kWindowsErrorInvalidParameter);
  }
  resetMachine(model);
  changePresence(model, &kDefaultPresence);
  return done();
}

static tModelReply setPresence(tModel* model, const tModelRequest* request) {
  tSimulatorPresence presence;
  if (!readInput(request, &presence, sizeof(presence)) || presence.controllers > kMostControllers ||
      presence.martens > kMostMartens || presence.devicePaths > kMostDevicePaths) {
    return failed(kWindowsErrorInvalidParameter);
  }
  changePresence(model, &presence);
  return done();
}

static tModelReply getPresence(tModel* model, const tModelRequest* request) {
  if (request->inputSize != 0) {
    return failed(kWindowsErrorInvalidParameter);
  }
  return answered(request, &model->presence, sizeof(model->presence));
}

static tModelReply setTable(tModel* model, const tModelRequest* request) {
  return handoverSetTable(&model->handover, request->input, request->inputSize)
             ? done()
             : failed(kWindowsErrorInvalidParameter);
}

static tModelReply getTable(tModel* model, const tModelRequest* request) {
  if (request->inputSize != 0) {
    return failed(kWindowsErrorInvalidParameter);
  }
  return answered(request, model->handover.table, model->handover.tableSize);
}

static tModelReply setVersionText(tModel* model, const tModelRequest* request) {
  return handoverSetText(&model->handover, request->input, request->inputSize)
             ? done()
             : failed(kWindowsErrorInvalidParameter);
}

static bool hasAttributes(uint32_t interfaceKind) {
  return interfaceKind == kSimulatorInterfaceController ||
         interfaceKind == kSimulatorInterfaceMarten;
}

static tModelReply setAttribute(tModel* model, const tModelRequest* request) {
  tSimulatorAttribute attribute;
  if (!readInput(request, &attribute, sizeof(attribute)) ||
      !hasAttributes(attribute.interfaceKind) || attribute.size > SIMULATOR_VALUE_CAPACITY) {
    return failed(kWindowsErrorInvalidParameter);
  }
  return attributesPut(&model->attributes, &attribute) ? done()
                                                       : failed(kWindowsErrorNoSystemResources);
}

static tModelReply removeAttribute(tModel* model, const tModelRequest* request) {
  tSimulatorAttribute attribute;
  if (!readInput(request, &attribute, sizeof(attribute)) ||
      !hasAttributes(attribute.interfaceKind)) {
    return failed(kWindowsErrorInvalidParameter);
  }
  attributesRemove(&model->attributes, attribute.interfaceKind, attribute.attribute);
  return done();
}

static tModelReply setWritable(tModel* model, const tModelRequest* request, bool writable) {
  tSimulatorAttribute attribute;
  if (!readInput(request, &attribute, sizeof(attribute)) ||
      !attributesSetWritable(&model->attributes, attribute.interfaceKind, attribute.attribute,
                             writable)) {
    return failed(kWindowsErrorInvalidParameter);
  }
  return done();
}

static tModelReply allowWrites(tModel* model, const tModelRequest* request) {
  return setWritable(model, request, true);
}

static tModelReply refuseWrites(tModel* model, const tModelRequest* request) {
  return setWritable(model, request, false);
}

static tModelReply addScript(tModel* model, const tModelRequest* request) {
  tSimulatorScript script;
  if (!readInput(request, &script, sizeof(script)) || !scriptIsValid(&script)) {
    return failed(kWindowsErrorInvalidParameter);
  }
  return scriptsAdd(&model->scripts, &script) ? done() : failed(kWindowsErrorNoSystemResources);
}

static tModelReply clearScripts(tModel* model, const tModelRequest* request) {
  if (request->inputSize != 0) {
    return failed(kWindowsErrorInvalidParameter);
  }
  scriptsClear(&model->scripts);
  return done();
}

static tModelReply readLog(tModel* model, const tModelRequest* request) {
  uint64_t fromSequence;
  if (!readInput(request, &fromSequence, sizeof(fromSequence))) {
    return failed(kWindowsErrorInvalidParameter);
  }
  const uint32_t kept = logCountFrom(&model->log, fromSequence);
  const uint32_t room = request->outputSize / (uint32_t)sizeof(tSimulatorLogEntry);
  if (kept != 0 && room == 0) {
    return failed(kWindowsErrorInsufficientBuffer);
  }
  const uint32_t count = smallerOf(kept, room);
  logCopyFrom(&model->log, fromSequence, count, request->output);
  return (tModelReply){kWindowsErrorNone, count * (uint32_t)sizeof(tSimulatorLogEntry)};
}

static tModelReply clearLog(tModel* model, const tModelRequest* request) {
  if (request->inputSize != 0) {
    return failed(kWindowsErrorInvalidParameter);
  }
  logClear(&model->log);
  return done();
}

static tModelReply readCounters(tModel* model, const tModelRequest* request) {
  if (request->inputSize != 0) {
    return failed(kWindowsErrorInvalidParameter);
  }
  tSimulatorCounters counters;
  countersOf(model, &counters);
  return answered(request, &counters, sizeof(counters));
}

static tModelReply setAcceptance(tModel* model, const tModelRequest* request) {
  uint32_t acceptance;
  if (!readInput(request, &acceptance, sizeof(acceptance)) || acceptance > kSimulatorAcceptNever) {
    return failed(kWindowsErrorInvalidParameter);
  }
  model->pending.acceptance = (tSimulatorAcceptance)acceptance;
  return done();
}

static tModelReply acceptWaiting(tModel* model, const tModelRequest* request) {
  if (request->inputSize != 0) {
    return failed(kWindowsErrorInvalidParameter);
  }
  acceptPending(model);
  return done();
}

static tSimulatorPendingRequest describePending(const tPendingEntry* entry) {
  return (tSimulatorPendingRequest){.process = entry->file.process,
                                    .file = entry->file.file,
                                    .handle = entry->handle,
                                    .b = entry->b,
                                    .interfaceKind = entry->file.interfaceKind,
                                    .a = entry->a,
                                    .c = entry->c};
}

static tModelReply readPending(tModel* model, const tModelRequest* request) {
  if (request->inputSize != 0) {
    return failed(kWindowsErrorInvalidParameter);
  }
  const uint32_t room = request->outputSize / (uint32_t)sizeof(tSimulatorPendingRequest);
  const uint32_t count = smallerOf(model->pending.count, room);
  uint8_t* to = request->output;
  for (uint32_t i = 0; i < count; ++i) {
    const tSimulatorPendingRequest record = describePending(&model->pending.entries[i]);
    copyBytes(to, &record, sizeof(record));
    to += sizeof(record);
  }
  return (tModelReply){kWindowsErrorNone, count * (uint32_t)sizeof(tSimulatorPendingRequest)};
}

static tModelReply completeOne(tModel* model, const tModelRequest* request) {
  tSimulatorCompletion completion;
  if (!readInput(request, &completion, sizeof(completion)) ||
      completion.windowsError > UINT16_MAX || completion.windowsError == kWindowsErrorIoPending) {
    return failed(kWindowsErrorInvalidParameter);
  }
  return completePending(model, completion.handle, completion.windowsError)
             ? done()
             : failed(kWindowsErrorNotFound);
}

static tModelReply tell(tModel* model, const tModelRequest* request) {
  tSimulatorNotice notice;
  if (!readInput(request, &notice, sizeof(notice))) {
    return failed(kWindowsErrorInvalidParameter);
  }
  return notify(model, &notice) != 0 ? done() : failed(kWindowsErrorNotFound);
}

static tModelReply demote(tModel* model, const tModelRequest* request) {
  uint32_t ticket;
  if (!readInput(request, &ticket, sizeof(ticket))) {
    return failed(kWindowsErrorInvalidParameter);
  }
  return demoteRoute(model, ticket) ? done() : failed(kWindowsErrorNotFound);
}

static tModelReply readRoutes(tModel* model, const tModelRequest* request) {
  if (request->inputSize != 0) {
    return failed(kWindowsErrorInvalidParameter);
  }
  const uint32_t room = request->outputSize / (uint32_t)sizeof(tSimulatorRoute);
  const uint32_t count = smallerOf(model->router.count, room);
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
  if (!readInput(request, &length, sizeof(length)) || length == 1) {
    return failed(kWindowsErrorInvalidParameter);
  }
  model->router.pathLength = length;
  return done();
}

static tModelReply setTopographyName(tModel* model, const tModelRequest* request) {
  if (request->inputSize > SIMULATOR_TOPOGRAPHY_NAME_CAPACITY) {
    return failed(kWindowsErrorInvalidParameter);
  }
  copyBytes(model->router.topographyName, request->input, request->inputSize);
  model->router.topographyNameSize = request->inputSize;
  return done();
}

static tModelReply readFirmware(tModel* model, const tModelRequest* request) {
  if (request->inputSize != 0) {
    return failed(kWindowsErrorInvalidParameter);
  }
  const uint32_t size = firmwareKept(&model->firmware) * (uint32_t)sizeof(tSimulatorPayload);
  if (request->outputSize < size) {
    return failed(kWindowsErrorInsufficientBuffer);
  }
  firmwareCopy(&model->firmware, firmwareKept(&model->firmware), request->output);
  return (tModelReply){kWindowsErrorNone, size};
}

static tModelReply clearFirmware(tModel* model, const tModelRequest* request) {
  if (request->inputSize != 0) {
    return failed(kWindowsErrorInvalidParameter);
  }
  firmwareClear(&model->firmware);
  return done();
}

typedef struct tControlRequest {
  uint32_t code;
  tModelReply (*carryOut)(tModel* model, const tModelRequest* request);
} tControlRequest;

static const tControlRequest kControlRequests[] = {
    {SIMULATOR_RESET, reset},
    {SIMULATOR_SET_PRESENCE, setPresence},
    {SIMULATOR_GET_PRESENCE, getPresence},
    {SIMULATOR_SET_TABLE, setTable},
    {SIMULATOR_GET_TABLE, getTable},
    {SIMULATOR_SET_VERSION_TEXT, setVersionText},
    {SIMULATOR_SET_ATTRIBUTE, setAttribute},
    {SIMULATOR_REMOVE_ATTRIBUTE, removeAttribute},
    {SIMULATOR_ADD_SCRIPT, addScript},
    {SIMULATOR_CLEAR_SCRIPTS, clearScripts},
    {SIMULATOR_READ_LOG, readLog},
    {SIMULATOR_CLEAR_LOG, clearLog},
    {SIMULATOR_READ_COUNTERS, readCounters},
    {SIMULATOR_ALLOW_WRITES, allowWrites},
    {SIMULATOR_REFUSE_WRITES, refuseWrites},
    {SIMULATOR_SET_ACCEPTANCE, setAcceptance},
    {SIMULATOR_ACCEPT_PENDING, acceptWaiting},
    {SIMULATOR_READ_PENDING, readPending},
    {SIMULATOR_COMPLETE_PENDING, completeOne},
    {SIMULATOR_NOTIFY, tell},
    {SIMULATOR_DEMOTE_ROUTE, demote},
    {SIMULATOR_READ_ROUTES, readRoutes},
    {SIMULATOR_SET_PATH_LENGTH, setPathLength},
    {SIMULATOR_SET_TOPOGRAPHY_NAME, setTopographyName},
    {SIMULATOR_READ_FIRMWARE, readFirmware},
    {SIMULATOR_CLEAR_FIRMWARE, clearFirmware},
};

tModelReply carryOutControlRequest(tModel* model, const tModelRequest* request) {
  for (size_t i = 0; i < sizeof(kControlRequests) / sizeof(kControlRequests[0]); ++i) {
    if (kControlRequests[i].code == request->code) {
      return kControlRequests[i].carryOut(model, request);
    }
  }
  return failed(kWindowsErrorInvalidFunction);
}
