#include "simulator/model/scriptedanswers.h"

#include "simulator/model/bytes.h"
#include "simulator/model/driverrequests.h"
#include "simulator/model/notifications.h"
#include "simulator/model/pendingrequests.h"
#include "simulator/model/windowserrors.h"

static tModelReply failed(uint32_t windowsError) {
  return (tModelReply){windowsError, 0};
}

static tModelReply answerAsTheMachineDoes(tModel* model, const tModelRequest* request) {
  if (isPendingRequest(request->code)) {
    return carryOutPendingRequest(model, request);
  }
  if (isNotificationRequest(request->code)) {
    return carryOutNotificationRequest(model, request);
  }
  const tDriverRequest* known = findDriverRequest(request->file.interfaceKind, request->code);
  if (known == NULL) {
    return failed(kWindowsErrorInvalidFunction);
  }
  if (request->inputSize < known->inputSize) {
    return failed(kWindowsErrorInvalidParameter);
  }
  if (request->outputSize < known->replySize) {
    return failed(kWindowsErrorInsufficientBuffer);
  }
  known->carryOut(model, &request->file, request->input, request->output);
  return (tModelReply){kWindowsErrorNone, known->replySize};
}

/* The driver's status code is the last member of every non-empty reply. */
static void putDriverStatus(const tModelRequest* request, uint32_t replySize, int32_t status) {
  uint8_t* output = request->output;
  copyBytes(output + (replySize - sizeof(status)), &status, sizeof(status));
}

static tModelReply answerCode(const tModelRequest* request, int32_t status) {
  const tDriverRequest* known = findDriverRequest(request->file.interfaceKind, request->code);
  const uint32_t replySize = known != NULL ? known->replySize : (uint32_t)sizeof(tStatusReply);
  if (request->outputSize < replySize) {
    return failed(kWindowsErrorInsufficientBuffer);
  }
  fillWithZeros(request->output, replySize);
  putDriverStatus(request, replySize, status);
  return (tModelReply){kWindowsErrorNone, replySize};
}

static tModelReply answerBytes(const tModelRequest* request, const tSimulatorScript* script) {
  if (request->outputSize < script->replySize) {
    return failed(kWindowsErrorInsufficientBuffer);
  }
  copyBytes(request->output, script->reply, script->replySize);
  return (tModelReply){kWindowsErrorNone, script->replySize};
}

static tModelReply answerCut(tModel* model, const tModelRequest* request, uint32_t most) {
  tModelReply reply = answerAsTheMachineDoes(model, request);
  reply.size = smallerOf(reply.size, most);
  return reply;
}

static tModelReply answerWithCode(tModel* model, const tModelRequest* request, int32_t status) {
  const tModelReply reply = answerAsTheMachineDoes(model, request);
  if (reply.windowsError == kWindowsErrorNone && reply.size >= sizeof(status)) {
    putDriverStatus(request, reply.size, status);
  }
  return reply;
}

static tModelReply answerAsScripted(tModel* model, const tModelRequest* request,
                                    const tSimulatorScript* script) {
  switch ((tSimulatorAction)script->action) {
    case kSimulatorActionAnswerCode:
      return answerCode(request, script->driverStatus);
    case kSimulatorActionFail:
      return failed(script->windowsError);
    case kSimulatorActionReply:
      return answerBytes(request, script);
    case kSimulatorActionTruncate:
      return answerCut(model, request, script->replySize);
    case kSimulatorActionAddCode:
      return answerWithCode(model, request, script->driverStatus);
  }
  return failed(kWindowsErrorInvalidFunction);
}

tModelReply answerDriverRequest(tModel* model, const tModelRequest* request) {
  const tSimulatorScript* script =
      scriptsTake(&model->scripts, request->file.interfaceKind, request->code);
  return script != NULL ? answerAsScripted(model, request, script)
                        : answerAsTheMachineDoes(model, request);
}
