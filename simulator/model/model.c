#include "simulator/model/model.h"

#include "simulator/model/bytes.h"
#include "simulator/model/control.h"
#include "simulator/model/defaultmachine.h"
#include "simulator/model/scriptedanswers.h"

static bool isLogged(const tModelFile* file) {
  return file->interfaceKind != kSimulatorInterfaceControl;
}

static void startEntry(tSimulatorLogEntry* entry, const tModelFile* file, tSimulatorEvent event) {
  fillWithZeros(entry, sizeof(*entry));
  entry->process = file->process;
  entry->file = file->file;
  entry->event = event;
  entry->interfaceKind = file->interfaceKind;
}

static void logFileEvent(tModel* model, const tModelFile* file, tSimulatorEvent event) {
  if (isLogged(file)) {
    tSimulatorLogEntry entry;
    startEntry(&entry, file, event);
    logAppend(&model->log, &entry);
  }
}

static tModelReply answerAndLog(tModel* model, const tModelRequest* request) {
  tSimulatorLogEntry entry;
  startEntry(&entry, &request->file, kSimulatorEventRequest);
  entry.requestCode = request->code;
  entry.inputSize = request->inputSize;
  /* Before the answer: it may overwrite the input. */
  copyBytes(entry.input, request->input, smallerOf(request->inputSize, sizeof(entry.input)));

  const tModelReply reply = answerDriverRequest(model, request);

  entry.outputSize = reply.size;
  entry.windowsError = reply.windowsError;
  copyBytes(entry.output, request->output, smallerOf(reply.size, sizeof(entry.output)));
  logAppend(&model->log, &entry);
  return reply;
}

void modelInitialise(tModel* model, const tModelHost* host) {
  model->host = *host;
  resetMachine(model);
  model->presence = kDefaultPresence;
  host->presenceChanged(host->context, &model->presence);
}

void modelOpen(tModel* model, const tModelFile* file) {
  logFileEvent(model, file, kSimulatorEventOpen);
}

void modelClose(tModel* model, const tModelFile* file) {
  logFileEvent(model, file, kSimulatorEventClose);
}

tModelReply modelRequest(tModel* model, const tModelRequest* request) {
  return isLogged(&request->file) ? answerAndLog(model, request)
                                  : carryOutControlRequest(model, request);
}
