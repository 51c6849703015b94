#include "simulator/model/pending.h"

#include <stddef.h>

#include "protocol/pendingrequests.h"
#include "simulator/model/bytes.h"
#include "simulator/model/model.h"

/* ---- The list ---- */

static bool add(tPendingList* pending, const tPendingEntry* entry) {
  if (pending->count == SIMULATOR_PENDING_CAPACITY) {
    return false;
  }
  pending->entries[pending->count] = *entry;
  ++pending->count;
  ++pending->begun;
  return true;
}

/* Removes an entry; later ones move up. */
static tPendingEntry removeAt(tPendingList* pending, uint32_t index) {
  const tPendingEntry removed = pending->entries[index];
  --pending->count;
  ++pending->ended;
  for (uint32_t i = index; i < pending->count; ++i) {
    pending->entries[i] = pending->entries[i + 1];
  }
  return removed;
}

/* The index of an entry; `count` if not found. */
static uint32_t findToken(const tPendingList* pending, uint64_t token) {
  uint32_t index = 0;
  while (index < pending->count && pending->entries[index].token != token) {
    ++index;
  }
  return index;
}

static uint32_t findHandle(const tPendingList* pending, uint64_t handle) {
  uint32_t index = 0;
  while (index < pending->count && pending->entries[index].handle != handle) {
    ++index;
  }
  return index;
}

/* ---- Acceptance and completion ---- */

static uint32_t requestCodeOf(const tPendingEntry* entry) {
  return entry->b >> 32 == 0 ? REQUEST_PENDING_NARROW : REQUEST_PENDING_WIDE;
}

static void logPending(tModel* model, const tPendingEntry* entry, tSimulatorEvent event,
                       uint32_t windowsError) {
  tSimulatorLogEntry line;
  logStartEntry(&line, &entry->file, event);
  line.requestCode = requestCodeOf(entry);
  line.windowsError = windowsError;
  line.outputSize = sizeof(entry->handle);
  copyBytes(line.output, &entry->handle, sizeof(entry->handle));
  logAppend(&model->log, &line);
}

static void complete(tModel* model, uint32_t index, uint32_t windowsError) {
  const tPendingEntry entry = removeAt(&model->pending, index);
  logPending(model, &entry, kSimulatorEventCompleted, windowsError);
  model->host.completeRequest(model->host.context, entry.token, windowsError, NULL, 0);
}

/* Writes the handle to the caller and signals its event. Returns the error if the request fails. */
static uint32_t deliverHandle(tModel* model, const tPendingEntry* entry, uint64_t handle) {
  const tModelHost* host = &model->host;
  if (!writeToCaller(host, &entry->file, entry->handleAddress, &handle, sizeof(handle))) {
    return kWindowsErrorNoAccess;
  }
  return host->signalEvent(host->context, entry->file.process, entry->event)
             ? kWindowsErrorNone
             : kWindowsErrorInvalidHandle;
}

/* False if acceptance failed, which completes the request. */
static bool accept(tModel* model, uint32_t index) {
  tPendingEntry* entry = &model->pending.entries[index];
  const uint32_t windowsError = deliverHandle(model, entry, model->pending.nextHandle);
  if (windowsError != kWindowsErrorNone) {
    complete(model, index, windowsError);
    return false;
  }
  entry->handle = model->pending.nextHandle++;
  logPending(model, entry, kSimulatorEventAccepted, kWindowsErrorNone);
  return true;
}

/* ---- The requests ---- */

/* The two requests have different layouts of the same arguments. */
static bool readArguments(const tModelRequest* request, tPendingEntry* entry) {
  if (request->code == REQUEST_PENDING_NARROW &&
      request->inputSize == sizeof(tPendingNarrowRequest)) {
    tPendingNarrowRequest sent;
    copyBytes(&sent, request->input, sizeof(sent));
    *entry = (tPendingEntry){.handleAddress = sent.handleAddress,
                             .event = sent.event,
                             .b = sent.b,
                             .a = sent.a,
                             .c = sent.c};
    return true;
  }
  if (request->code == REQUEST_PENDING_WIDE && request->inputSize == sizeof(tPendingWideRequest)) {
    tPendingWideRequest sent;
    copyBytes(&sent, request->input, sizeof(sent));
    *entry = (tPendingEntry){.handleAddress = sent.handleAddress,
                             .event = sent.event,
                             .b = sent.b,
                             .a = sent.a,
                             .c = sent.c};
    return true;
  }
  return false;
}

static tModelReply begin(tModel* model, const tModelRequest* request) {
  tPendingEntry entry;
  if (request->token == 0 || !readArguments(request, &entry)) {
    return emptyReply(kWindowsErrorInvalidParameter);
  }
  if (model->pending.acceptance == kSimulatorAcceptNever) {
    return emptyReply(kWindowsErrorNone);
  }
  entry.token = request->token;
  entry.file = request->file;
  return add(&model->pending, &entry) ? emptyReply(kWindowsErrorIoPending)
                                      : emptyReply(kWindowsErrorNoSystemResources);
}

static tModelReply end(tModel* model, const tModelRequest* request) {
  tEndPendingRequest ending;
  if (request->inputSize != sizeof(ending)) {
    return emptyReply(kWindowsErrorInvalidParameter);
  }
  copyBytes(&ending, request->input, sizeof(ending));
  const uint32_t index = findHandle(&model->pending, ending.handle);
  if (ending.handle == 0 || index == model->pending.count ||
      model->pending.entries[index].file.file != request->file.file) {
    return emptyReply(kWindowsErrorNotFound);
  }
  complete(model, index, kWindowsErrorNone);
  return emptyReply(kWindowsErrorNone);
}

bool isPendingRequest(uint32_t code) {
  return code == REQUEST_PENDING_NARROW || code == REQUEST_PENDING_WIDE ||
         code == REQUEST_END_PENDING;
}

tModelReply carryOutPendingRequest(tModel* model, const tModelRequest* request) {
  return request->code == REQUEST_END_PENDING ? end(model, request) : begin(model, request);
}

/* ---- The host and the control interface ---- */

void acceptPending(tModel* model) {
  uint32_t index = 0;
  while (index < model->pending.count) {
    if (model->pending.entries[index].handle != 0 || accept(model, index)) {
      ++index;
    }
  }
}

bool completePending(tModel* model, uint64_t handle, uint32_t windowsError) {
  bool found = false;
  uint32_t index = findHandle(&model->pending, handle);
  while (index < model->pending.count) {
    found = true;
    complete(model, index, windowsError);
    index = findHandle(&model->pending, handle);
  }
  return found;
}

void abortPendingOf(tModel* model, const tModelFile* file) {
  uint32_t index = 0;
  while (index < model->pending.count) {
    if (model->pending.entries[index].file.file == file->file) {
      complete(model, index, kWindowsErrorOperationAborted);
    } else {
      ++index;
    }
  }
}

void resetPending(tModel* model) {
  while (model->pending.count != 0) {
    complete(model, 0, kWindowsErrorOperationAborted);
  }
  model->pending.acceptance = kSimulatorAcceptAtOnce;
  model->pending.nextHandle = 1;
}

void acceptIfImmediate(tModel* model, uint64_t token) {
  const uint32_t index = findToken(&model->pending, token);
  if (index != model->pending.count && model->pending.acceptance == kSimulatorAcceptAtOnce) {
    accept(model, index);
  }
}

bool cancelPending(tModel* model, uint64_t token) {
  const uint32_t index = findToken(&model->pending, token);
  if (index == model->pending.count) {
    return false;
  }
  const tPendingEntry entry = removeAt(&model->pending, index);
  logPending(model, &entry, kSimulatorEventCompleted, kWindowsErrorOperationAborted);
  return true;
}
