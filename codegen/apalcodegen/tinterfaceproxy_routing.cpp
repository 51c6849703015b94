#include "codegen/apalcodegen/tinterfaceproxy_routing.h"

#include "protocol/controllerrequests.h"
#include "protocol/routingrequests.h"

namespace nQUENRA1400::nZOAPAL000 {
namespace {

using nZOAPALS100::tSourceLocation;
using nZOAPALS100::tStatus;

constexpr tSourceLocation site(uint32_t line) noexcept {
  return {"tInterfaceProxy_routing", line};
}
constexpr auto kMethod0 = site(68);
constexpr auto kCalculateRoute = site(104);
constexpr auto kDestroyRoute = site(132);
constexpr auto kReserveRoute = site(161);
constexpr auto kProgramRoute = site(187);
constexpr auto kUnreserveRoute = site(213);
constexpr auto kUnprogramRoute = site(239);
constexpr auto kGetRouteTerminalPath = site(268);
constexpr auto kGetTopographyName = site(295);
constexpr auto kResetTerminal = site(322);
constexpr auto kCalculateResetTerminal = site(352);

}  // namespace

void tInterfaceProxy_routing::callOnTicket(uint32_t code, uint32_t ticket,
                                           const tSourceLocation& site, tStatus& status) noexcept {
  tTicketRequest request{};
  request.ticket = ticket;
  call<tStatusReply>(code, request, site, status);
}

void tInterfaceProxy_routing::callForListOfTicket(uint32_t code, uint32_t ticket, uint64_t buffer,
                                                  uint32_t& count, const tSourceLocation& site,
                                                  tStatus& status) noexcept {
  tTicketListRequest request{};
  request.ticket = ticket;
  request.buffer = buffer;
  request.count = count;
  call<tTicketListReply>(code, request, site, status,
                         [&count](const tTicketListReply& reply) noexcept { count = reply.count; });
}

void tInterfaceProxy_routing::method0(uint32_t& result, tStatus& status) noexcept {
  call<tRoutingValueReply>(
      REQUEST_ROUTING_METHOD0, tRoutingMethod0Request{}, kMethod0, status,
      [&result](const tRoutingValueReply& reply) noexcept { result = reply.value; });
}

uint32_t tInterfaceProxy_routing::calculateRoute(uint64_t modifiers, uint64_t seeds,
                                                 uint32_t seedCount, uint64_t destinations,
                                                 uint32_t destinationCount, uint32_t options,
                                                 uint64_t routes, uint32_t& routeCount,
                                                 tStatus& status) noexcept {
  tCalculateRouteRequest request{};
  request.modifiers = modifiers;
  request.seeds = seeds;
  request.seedCount = seedCount;
  request.destinations = destinations;
  request.destinationCount = destinationCount;
  request.options = options;
  request.routes = routes;
  request.routeCapacity = routeCount;
  uint32_t value = 0;
  call<tCalculateRouteReply>(REQUEST_CALCULATE_ROUTE, request, kCalculateRoute, status,
                             [&](const tCalculateRouteReply& reply) noexcept {
                               value = reply.value;
                               routeCount = reply.routeCount;
                             });
  return value;
}

void tInterfaceProxy_routing::destroyRoute(uint32_t ticket, tStatus& status) noexcept {
  callOnTicket(REQUEST_DESTROY_ROUTE, ticket, kDestroyRoute, status);
}

void tInterfaceProxy_routing::reserveRoute(uint32_t ticket, uint64_t conflicts, uint32_t& count,
                                           tStatus& status) noexcept {
  callForListOfTicket(REQUEST_RESERVE_ROUTE, ticket, conflicts, count, kReserveRoute, status);
}

void tInterfaceProxy_routing::programRoute(uint32_t ticket, tStatus& status) noexcept {
  callOnTicket(REQUEST_PROGRAM_ROUTE, ticket, kProgramRoute, status);
}

void tInterfaceProxy_routing::unreserveRoute(uint32_t ticket, tStatus& status) noexcept {
  callOnTicket(REQUEST_UNRESERVE_ROUTE, ticket, kUnreserveRoute, status);
}

void tInterfaceProxy_routing::unprogramRoute(uint32_t ticket, tStatus& status) noexcept {
  callOnTicket(REQUEST_UNPROGRAM_ROUTE, ticket, kUnprogramRoute, status);
}

void tInterfaceProxy_routing::getRouteTerminalPath(uint32_t ticket, uint64_t terminals,
                                                   uint32_t& count, tStatus& status) noexcept {
  callForListOfTicket(REQUEST_GET_ROUTE_TERMINAL_PATH, ticket, terminals, count,
                      kGetRouteTerminalPath, status);
}

void tInterfaceProxy_routing::getTopographyName(uint64_t buffer, uint32_t size,
                                                tStatus& status) noexcept {
  tGetTopographyNameRequest request{};
  request.buffer = buffer;
  request.size = size;
  call<tStatusReply>(REQUEST_GET_TOPOGRAPHY_NAME, request, kGetTopographyName, status);
}

void tInterfaceProxy_routing::resetTerminal(uint32_t terminal, uint32_t floating,
                                            tStatus& status) noexcept {
  tResetTerminalRequest request{};
  request.terminal = terminal;
  request.floating = floating;
  call<tStatusReply>(REQUEST_RESET_TERMINAL, request, kResetTerminal, status);
}

uint32_t tInterfaceProxy_routing::calculateResetTerminal(uint64_t reserved, uint32_t terminal,
                                                         int32_t floating,
                                                         tStatus& status) noexcept {
  tCalculateResetTerminalRequest request{};
  request.reserved = reserved;
  request.terminal = terminal;
  request.floating = floating;
  uint32_t value = 0;
  call<tRoutingValueReply>(
      REQUEST_CALCULATE_RESET_TERMINAL, request, kCalculateResetTerminal, status,
      [&value](const tRoutingValueReply& reply) noexcept { value = reply.value; });
  return value;
}

}  // namespace nQUENRA1400::nZOAPAL000
