#include "simulator/model/driverrequests.h"

#include "protocol/routingrequests.h"
#include "simulator/model/routecalculation.h"
#include "simulator/model/routerequests.h"

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

const tDriverRequest* findDriverRequest(tSimulatorInterface interfaceKind, uint32_t code) {
  for (size_t i = 0; i < sizeof(kDriverRequests) / sizeof(kDriverRequests[0]); ++i) {
    const tDriverRequest* request = &kDriverRequests[i];
    if (request->interfaceKind == interfaceKind && request->code == code) {
      return request;
    }
  }
  return NULL;
}
