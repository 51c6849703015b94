#include "simulator/model/model.h"

#include "simulator/model/bytes.h"
#include "simulator/model/requests.h"

static bool isLogged(const tModelFile* file) {
  return file->interfaceKind != kSimulatorInterfaceControl;
}

static void logFileEvent(tModel* model, const tModelFile* file, tSimulatorEvent event) {
  if (isLogged(file)) {
    tSimulatorLogEntry entry;
    logStartEntry(&entry, file, event);
    logAppend(&model->log, &entry);
  }
}

static tModelReply answerAndLog(tModel* model, const tModelRequest* request) {
  tSimulatorLogEntry entry;
  logStartEntry(&entry, &request->file, kSimulatorEventRequest);
  entry.requestCode = request->code;
  entry.inputSize = request->inputSize;
  /* Copied first: the reply may overwrite the input, which can share its memory. */
  copyBytes(entry.input, request->input, smallerOf(request->inputSize, sizeof(entry.input)));

  /* Logged before the entries that carrying out the request adds. */
  tSimulatorLogEntry* logged = logAppend(&model->log, &entry);

  const tModelReply reply = answerDriverRequest(model, request);

  logged->outputSize = reply.size;
  logged->windowsError = reply.windowsError;
  copyBytes(logged->output, request->output, smallerOf(reply.size, sizeof(logged->output)));
  return reply;
}

void modelInitialise(tModel* model, const tModelHost* host) {
  model->host = *host;
  model->filesOpened = 0;
  model->filesClosed = 0;
  model->replyDelay = 0;
  fillWithZeros(&model->pending, sizeof(model->pending));
  fillWithZeros(&model->router, sizeof(model->router));
  fillWithZeros(&model->notifications, sizeof(model->notifications));
  resetMachine(model);
  model->presence = kDefaultPresence;
  host->presenceChanged(host->context, &model->presence);
}

void modelOpen(tModel* model, const tModelFile* file) {
  model->filesOpened += isLogged(file) ? 1 : 0;
  logFileEvent(model, file, kSimulatorEventOpen);
}

void modelCleanUp(tModel* model, const tModelFile* file) {
  abortPendingOf(model, file);
  abortNotificationsOf(model, file);
  routerRemoveSession(&model->router, file->file);
}

void modelPended(tModel* model, uint64_t token) {
  acceptIfImmediate(model, token);
}

bool modelCancel(tModel* model, uint64_t token) {
  return cancelPending(model, token) || cancelNotificationRequest(model, token);
}

void modelClose(tModel* model, const tModelFile* file) {
  model->filesClosed += isLogged(file) ? 1 : 0;
  logFileEvent(model, file, kSimulatorEventClose);
}

uint32_t modelReplyDelay(const tModel* model) {
  return model->replyDelay;
}

tModelReply modelRequest(tModel* model, const tModelRequest* request) {
  model->replyDelay = 0;
  return isLogged(&request->file) ? answerAndLog(model, request)
                                  : answerControlRequest(model, request);
}
