#include "simulator/model/driverrequests.h"

/* The device path interface takes no requests. */
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
};

const tDriverRequest* findDriverRequest(tSimulatorInterface interfaceKind, uint32_t code) {
  for (size_t i = 0; i < sizeof(kDriverRequests) / sizeof(kDriverRequests[0]); ++i) {
    const tDriverRequest* request = &kDriverRequests[i];
    if (request->interfaceKind == interfaceKind && request->code == code) {
      return request;
    }
  }
  return NULL;
}
