#include "simulator/model/requests.h"

#include <stddef.h>

#include "protocol/controllerrequests.h"
#include "protocol/routingrequests.h"
#include "simulator/model/bytes.h"

typedef struct tDriverRequest {
  tSimulatorInterface interfaceKind;
  uint32_t code;
  uint32_t inputSize; /* required bytes; more are ignored */
  uint32_t replySize;
  tDriverOperation* carryOut;
} tDriverRequest;

static const tDriverRequest kDriverRequests[] = {
    {kSimulatorInterfaceController, REQUEST_EXCHANGE_VALUES, sizeof(tExchangeValuesRequest),
     sizeof(tExchangeValuesReply), carryOutExchangeValues},
    {kSimulatorInterfaceController, REQUEST_CONTROLLER_SEND_COMMAND, sizeof(tSendCommandRequest),
     sizeof(tStatusReply), carryOutSendCommand},
    {kSimulatorInterfaceController, REQUEST_GET_ATTRIBUTE, sizeof(tGetAttributeRequest),
     sizeof(tGetAttributeReply), carryOutGetAttribute},
    {kSimulatorInterfaceController, REQUEST_SET_ATTRIBUTE, sizeof(tSetAttributeRequest),
     sizeof(tStatusReply), carryOutSetAttribute},
    {kSimulatorInterfaceMarten, REQUEST_MARTEN_SEND_COMMAND, sizeof(tSendCommandRequest),
     sizeof(tStatusReply), carryOutSendCommand},
    {kSimulatorInterfaceMarten, REQUEST_GET_ATTRIBUTE, sizeof(tGetAttributeRequest),
     sizeof(tGetAttributeReply), carryOutGetAttribute},
    {kSimulatorInterfaceMarten, REQUEST_SET_ATTRIBUTE, sizeof(tSetAttributeRequest),
     sizeof(tStatusReply), carryOutSetAttribute},
    {kSimulatorInterfaceDevicePath, REQUEST_ROUTING_METHOD0, sizeof(tRoutingMethod0Request),
     sizeof(tRoutingValueReply), carryOutCountTerminals},
    {kSimulatorInterfaceDevicePath, REQUEST_CALCULATE_ROUTE, sizeof(tCalculateRouteRequest),
     sizeof(tCalculateRouteReply), carryOutCalculateRoute},
    {kSimulatorInterfaceDevicePath, REQUEST_DESTROY_ROUTE, sizeof(tTicketRequest),
     sizeof(tStatusReply), carryOutDestroyRoute},
    {kSimulatorInterfaceDevicePath, REQUEST_RESERVE_ROUTE, sizeof(tTicketListRequest),
     sizeof(tTicketListReply), carryOutReserveRoute},
    {kSimulatorInterfaceDevicePath, REQUEST_PROGRAM_ROUTE, sizeof(tTicketRequest),
     sizeof(tStatusReply), carryOutProgramRoute},
    {kSimulatorInterfaceDevicePath, REQUEST_UNRESERVE_ROUTE, sizeof(tTicketRequest),
     sizeof(tStatusReply), carryOutUnreserveRoute},
    {kSimulatorInterfaceDevicePath, REQUEST_UNPROGRAM_ROUTE, sizeof(tTicketRequest),
     sizeof(tStatusReply), carryOutUnprogramRoute},
    {kSimulatorInterfaceDevicePath, REQUEST_GET_ROUTE_TERMINAL_PATH, sizeof(tTicketListRequest),
     sizeof(tTicketListReply), carryOutGetPath},
    {kSimulatorInterfaceDevicePath, REQUEST_GET_TOPOGRAPHY_NAME, sizeof(tGetTopographyNameRequest),
     sizeof(tStatusReply), carryOutGetTopographyName},
    {kSimulatorInterfaceDevicePath, REQUEST_RESET_TERMINAL, sizeof(tResetTerminalRequest),
     sizeof(tStatusReply), carryOutResetTerminal},
    {kSimulatorInterfaceDevicePath, REQUEST_CALCULATE_RESET_TERMINAL,
     sizeof(tCalculateResetTerminalRequest), sizeof(tRoutingValueReply), carryOutCalculateReset},
};

/* Null if the interface does not support the code. */
static const tDriverRequest* findDriverRequest(tSimulatorInterface interfaceKind, uint32_t code) {
  for (size_t i = 0; i < sizeof(kDriverRequests) / sizeof(kDriverRequests[0]); ++i) {
    const tDriverRequest* request = &kDriverRequests[i];
    if (request->interfaceKind == interfaceKind && request->code == code) {
      return request;
    }
  }
  return NULL;
}

static tModelReply carryOut(tModel* model, const tModelRequest* request) {
  if (isPendingRequest(request->code)) {
    return carryOutPendingRequest(model, request);
  }
  if (isNotificationRequest(request->code)) {
    return carryOutNotificationRequest(model, request);
  }
  const tDriverRequest* known = findDriverRequest(request->file.interfaceKind, request->code);
  if (known == NULL) {
    return emptyReply(kWindowsErrorInvalidFunction);
  }
  if (request->inputSize < known->inputSize) {
    return emptyReply(kWindowsErrorInvalidParameter);
  }
  if (request->outputSize < known->replySize) {
    return emptyReply(kWindowsErrorInsufficientBuffer);
  }
  known->carryOut(model, &request->file, request->input, request->output);
  return (tModelReply){kWindowsErrorNone, known->replySize};
}

/* The driver's status code is the last member of every non-empty reply. */
static void writeDriverStatus(const tModelRequest* request, uint32_t replySize, int32_t status) {
  uint8_t* output = request->output;
  copyBytes(output + (replySize - sizeof(status)), &status, sizeof(status));
}

static tModelReply answerCode(const tModelRequest* request, int32_t status) {
  const tDriverRequest* known = findDriverRequest(request->file.interfaceKind, request->code);
  const uint32_t replySize = known != NULL ? known->replySize : (uint32_t)sizeof(tStatusReply);
  if (request->outputSize < replySize) {
    return emptyReply(kWindowsErrorInsufficientBuffer);
  }
  fillWithZeros(request->output, replySize);
  writeDriverStatus(request, replySize, status);
  return (tModelReply){kWindowsErrorNone, replySize};
}

static tModelReply answerBytes(const tModelRequest* request, const tSimulatorScript* script) {
  if (request->outputSize < script->replySize) {
    return emptyReply(kWindowsErrorInsufficientBuffer);
  }
  copyBytes(request->output, script->reply, script->replySize);
  return (tModelReply){kWindowsErrorNone, script->replySize};
}

static tModelReply answerTruncated(tModel* model, const tModelRequest* request, uint32_t maxSize) {
  tModelReply reply = carryOut(model, request);
  reply.size = smallerOf(reply.size, maxSize);
  return reply;
}

static tModelReply answerAddingCode(tModel* model, const tModelRequest* request, int32_t status) {
  const tModelReply reply = carryOut(model, request);
  if (reply.windowsError == kWindowsErrorNone && reply.size >= sizeof(status)) {
    writeDriverStatus(request, reply.size, status);
  }
  return reply;
}

static tModelReply answerAsScripted(tModel* model, const tModelRequest* request,
                                    const tSimulatorScript* script) {
  switch ((tSimulatorAction)script->action) {
    case kSimulatorActionAnswerCode:
      return answerCode(request, script->driverStatus);
    case kSimulatorActionFail:
      return emptyReply(script->windowsError);
    case kSimulatorActionReply:
      return answerBytes(request, script);
    case kSimulatorActionTruncate:
      return answerTruncated(model, request, script->replySize);
    case kSimulatorActionAddCode:
      return answerAddingCode(model, request, script->driverStatus);
  }
  return emptyReply(kWindowsErrorInvalidFunction);
}

tModelReply answerDriverRequest(tModel* model, const tModelRequest* request) {
  const tSimulatorScript* script =
      scriptsSelect(&model->scripts, request->file.interfaceKind, request->code);
  return script != NULL ? answerAsScripted(model, request, script) : carryOut(model, request);
}
