#include "simulator/model/pendingrequests.h"

#include <stddef.h>

#include "protocol/pendingrequests.h"
#include "simulator/model/bytes.h"
#include "simulator/model/logentry.h"
#include "simulator/model/windowserrors.h"

static tModelReply answered(uint32_t windowsError) {
  return (tModelReply){windowsError, 0};
}

static uint32_t requestCodeOf(const tPendingEntry* entry) {
  return entry->b >> 32 == 0 ? REQUEST_PENDING_NARROW : REQUEST_PENDING_WIDE;
}

static void logPending(tModel* model, const tPendingEntry* entry, tSimulatorEvent event,
                       uint32_t windowsError) {
  tSimulatorLogEntry line;
  startLogEntry(&line, &entry->file, event);
  line.requestCode = requestCodeOf(entry);
  line.windowsError = windowsError;
  line.outputSize = sizeof(entry->handle);
  copyBytes(line.output, &entry->handle, sizeof(entry->handle));
  logAppend(&model->log, &line);
}

static void complete(tModel* model, uint32_t index, uint32_t windowsError) {
  const tPendingEntry entry = pendingRemove(&model->pending, index);
  logPending(model, &entry, kSimulatorEventCompleted, windowsError);
  model->host.completeRequest(model->host.context, entry.token, windowsError, NULL, 0);
}

/* Writes the handle to the caller and signals its event. Returns the error if the request fails. */
static uint32_t hand(tModel* model, const tPendingEntry* entry, uint64_t handle) {
  const tModelHost* host = &model->host;
  if (!host->writeCaller(host->context, entry->file.process, entry->handleAddress, &handle,
                         sizeof(handle))) {
    return kWindowsErrorNoAccess;
  }
  return host->signalEvent(host->context, entry->file.process, entry->event)
             ? kWindowsErrorNone
             : kWindowsErrorInvalidHandle;
}

/* False if acceptance failed, which completes the request. */
static bool accept(tModel* model, uint32_t index) {
  tPendingEntry* entry = &model->pending.entries[index];
  const uint32_t windowsError = hand(model, entry, model->pending.nextHandle);
  if (windowsError != kWindowsErrorNone) {
    complete(model, index, windowsError);
    return false;
  }
  entry->handle = model->pending.nextHandle++;
  logPending(model, entry, kSimulatorEventAccepted, kWindowsErrorNone);
  return true;
}

/* The two requests have different layouts of the same arguments. */
static bool readForm(const tModelRequest* request, tPendingEntry* entry) {
  if (request->code == REQUEST_PENDING_NARROW &&
      request->inputSize == sizeof(tPendingNarrowRequest)) {
    tPendingNarrowRequest form;
    copyBytes(&form, request->input, sizeof(form));
    *entry = (tPendingEntry){.handleAddress = form.handleAddress,
                             .event = form.event,
                             .b = form.b,
                             .a = form.a,
                             .c = form.c};
    return true;
  }
  if (request->code == REQUEST_PENDING_WIDE && request->inputSize == sizeof(tPendingWideRequest)) {
    tPendingWideRequest form;
    copyBytes(&form, request->input, sizeof(form));
    *entry = (tPendingEntry){.handleAddress = form.handleAddress,
                             .event = form.event,
                             .b = form.b,
                             .a = form.a,
                             .c = form.c};
    return true;
  }
  return false;
}

static tModelReply begin(tModel* model, const tModelRequest* request) {
  tPendingEntry entry;
  if (request->token == 0 || !readForm(request, &entry)) {
    return answered(kWindowsErrorInvalidParameter);
  }
  if (model->pending.acceptance == kSimulatorAcceptNever) {
    return answered(kWindowsErrorNone);
  }
  entry.token = request->token;
  entry.file = request->file;
  return pendingAdd(&model->pending, &entry) ? answered(kWindowsErrorIoPending)
                                             : answered(kWindowsErrorNoSystemResources);
}

static tModelReply end(tModel* model, const tModelRequest* request) {
  tEndPendingRequest asked;
  if (request->inputSize != sizeof(asked)) {
    return answered(kWindowsErrorInvalidParameter);
  }
  copyBytes(&asked, request->input, sizeof(asked));
  const uint32_t index = pendingFindHandle(&model->pending, asked.handle);
  if (asked.handle == 0 || index == model->pending.count ||
      model->pending.entries[index].file.file != request->file.file) {
    return answered(kWindowsErrorNotFound);
  }
  complete(model, index, kWindowsErrorNone);
  return answered(kWindowsErrorNone);
}

bool isPendingRequest(uint32_t code) {
  return code == REQUEST_PENDING_NARROW || code == REQUEST_PENDING_WIDE ||
         code == REQUEST_END_PENDING;
}

tModelReply carryOutPendingRequest(tModel* model, const tModelRequest* request) {
  return request->code == REQUEST_END_PENDING ? end(model, request) : begin(model, request);
}

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
  uint32_t index = pendingFindHandle(&model->pending, handle);
  while (index < model->pending.count) {
    found = true;
    complete(model, index, windowsError);
    index = pendingFindHandle(&model->pending, handle);
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

void abortAllPending(tModel* model) {
  while (model->pending.count != 0) {
    complete(model, 0, kWindowsErrorOperationAborted);
  }
}

void acceptIfAtOnce(tModel* model, uint64_t token) {
  const uint32_t index = pendingFindToken(&model->pending, token);
  if (index != model->pending.count && model->pending.acceptance == kSimulatorAcceptAtOnce) {
    accept(model, index);
  }
}

bool forgetPending(tModel* model, uint64_t token) {
  const uint32_t index = pendingFindToken(&model->pending, token);
  if (index == model->pending.count) {
    return false;
  }
  const tPendingEntry entry = pendingRemove(&model->pending, index);
  logPending(model, &entry, kSimulatorEventCompleted, kWindowsErrorOperationAborted);
  return true;
}
