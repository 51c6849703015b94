/* Requests and replies of the trigger-routing interface, byte for byte, little-endian.
 *
 * A request ends with the caller's status code, which shows the driver a warning that the caller
 * already has. A reply ends with the driver's status code. Members named `padding` are zero.
 * The caller owns the buffers and passes their addresses as 64-bit numbers, 0 with a count of 0. */
#ifndef PROTOCOL_ROUTINGREQUESTS_H
#define PROTOCOL_ROUTINGREQUESTS_H

#include "protocol/interfaces.h"

#define PROTOCOL_ROUTING_CODE(function) PROTOCOL_REQUEST_CODE(0x8080, 0, function)

/* The library does not send this request. It has no arguments. */
#define REQUEST_ROUTING_METHOD0 PROTOCOL_ROUTING_CODE(0x800)
#define REQUEST_CALCULATE_ROUTE PROTOCOL_ROUTING_CODE(0x801)
#define REQUEST_DESTROY_ROUTE PROTOCOL_ROUTING_CODE(0x802)
#define REQUEST_RESERVE_ROUTE PROTOCOL_ROUTING_CODE(0x803)
#define REQUEST_PROGRAM_ROUTE PROTOCOL_ROUTING_CODE(0x804)
#define REQUEST_UNRESERVE_ROUTE PROTOCOL_ROUTING_CODE(0x805)
#define REQUEST_UNPROGRAM_ROUTE PROTOCOL_ROUTING_CODE(0x806)
#define REQUEST_GET_ROUTE_TERMINAL_PATH PROTOCOL_ROUTING_CODE(0x807)
#define REQUEST_GET_TOPOGRAPHY_NAME PROTOCOL_ROUTING_CODE(0x808)
#define REQUEST_RESET_TERMINAL PROTOCOL_ROUTING_CODE(0x80A)
#define REQUEST_CALCULATE_RESET_TERMINAL PROTOCOL_ROUTING_CODE(0x80B)

PROTOCOL_ASSERT(REQUEST_ROUTING_METHOD0 == 0x80802000u);
PROTOCOL_ASSERT(REQUEST_CALCULATE_ROUTE == 0x80802004u);
PROTOCOL_ASSERT(REQUEST_DESTROY_ROUTE == 0x80802008u);
PROTOCOL_ASSERT(REQUEST_RESERVE_ROUTE == 0x8080200Cu);
PROTOCOL_ASSERT(REQUEST_PROGRAM_ROUTE == 0x80802010u);
PROTOCOL_ASSERT(REQUEST_UNRESERVE_ROUTE == 0x80802014u);
PROTOCOL_ASSERT(REQUEST_UNPROGRAM_ROUTE == 0x80802018u);
PROTOCOL_ASSERT(REQUEST_GET_ROUTE_TERMINAL_PATH == 0x8080201Cu);
PROTOCOL_ASSERT(REQUEST_GET_TOPOGRAPHY_NAME == 0x80802020u);
PROTOCOL_ASSERT(REQUEST_RESET_TERMINAL == 0x80802028u);
PROTOCOL_ASSERT(REQUEST_CALCULATE_RESET_TERMINAL == 0x8080202Cu);

/* Status codes of the driver that the routing adaptor handles: other routes hold the resources of a
 * route; the caller's buffer is too small for a path. */
#define DRIVER_STATUS_ROUTE_CONFLICT (-89137)
#define DRIVER_STATUS_PATH_TOO_LONG (-52019)

/* The event of a demoted route, in the mask of a notification. */
#define ROUTING_NOTIFICATION_DEMOTED 0x80000000u

/* The maximum size of the name of a topography in bytes; a name of this size has no NUL. */
#define ROUTING_TOPOGRAPHY_NAME_SIZE 128

/* The only bit defined for constraints and modifiers. */
#define ROUTE_CONSTRAINT_INVERSION_NEEDED 0x1u

/* Options of a calculation: ignore reservations. */
#define ROUTE_OPTION_IGNORE_RESERVATIONS 0x1u

/* The invalid terminal id. */
#define ROUTE_NO_TERMINAL 0u

/* A possible start of a route. */
typedef struct tRouteSeed {
  uint32_t terminal;
  uint32_t cost;
  uint32_t constraints;
} tRouteSeed;
PROTOCOL_SIZE(tRouteSeed, 12);
PROTOCOL_OFFSET(tRouteSeed, terminal, 0);
PROTOCOL_OFFSET(tRouteSeed, cost, 4);
PROTOCOL_OFFSET(tRouteSeed, constraints, 8);

/* The required and the optional properties of a route. */
typedef struct tRouteModifiers {
  uint32_t required;
  uint32_t optional;
} tRouteModifiers;
PROTOCOL_SIZE(tRouteModifiers, 8);
PROTOCOL_OFFSET(tRouteModifiers, required, 0);
PROTOCOL_OFFSET(tRouteModifiers, optional, 4);

/* A calculated route. `seed` is the index of the seed at which it starts; `inverts` is not 0 if it
 * inverts the signal. */
typedef struct tRouteRecord {
  uint32_t ticket;
  uint32_t destination;
  uint32_t cost;
  uint32_t seed;
  uint8_t inverts;
  uint8_t padding[3];
} tRouteRecord;
PROTOCOL_SIZE(tRouteRecord, 20);
PROTOCOL_OFFSET(tRouteRecord, ticket, 0);
PROTOCOL_OFFSET(tRouteRecord, destination, 4);
PROTOCOL_OFFSET(tRouteRecord, cost, 8);
PROTOCOL_OFFSET(tRouteRecord, seed, 12);
PROTOCOL_OFFSET(tRouteRecord, inverts, 16);
PROTOCOL_OFFSET(tRouteRecord, padding, 17);

/* A route that holds a resource needed by the requested route. */
typedef struct tRouteConflict {
  uint64_t session;
  uint32_t ticket;
  uint32_t padding;
} tRouteConflict;
PROTOCOL_SIZE(tRouteConflict, 16);
PROTOCOL_OFFSET(tRouteConflict, session, 0);
PROTOCOL_OFFSET(tRouteConflict, ticket, 8);
PROTOCOL_OFFSET(tRouteConflict, padding, 12);

/* REQUEST_ROUTING_METHOD0. */
typedef struct tRoutingMethod0Request {
  int32_t callerStatus;
} tRoutingMethod0Request;
PROTOCOL_SIZE(tRoutingMethod0Request, 4);
PROTOCOL_OFFSET(tRoutingMethod0Request, callerStatus, 0);

/* The reply of requests that return one 32-bit value. */
typedef struct tRoutingValueReply {
  uint32_t value;
  int32_t driverStatus;
} tRoutingValueReply;
PROTOCOL_SIZE(tRoutingValueReply, 8);
PROTOCOL_OFFSET(tRoutingValueReply, value, 0);
PROTOCOL_OFFSET(tRoutingValueReply, driverStatus, 4);

/* REQUEST_CALCULATE_ROUTE: `modifiers` is a tRouteModifiers record, `seeds` are tRouteSeed records,
 * `destinations` terminal ids, `options` ROUTE_OPTION_... bits, and `routes` receives tRouteRecord
 * records. Counts and the capacity are in records. */
typedef struct tCalculateRouteRequest {
  uint64_t modifiers;
  uint64_t seeds;
  uint32_t seedCount;
  uint32_t padding;
  uint64_t destinations;
  uint32_t destinationCount;
  uint32_t options;
  uint64_t routes;
  uint32_t routeCapacity;
  int32_t callerStatus;
} tCalculateRouteRequest;
PROTOCOL_SIZE(tCalculateRouteRequest, 56);
PROTOCOL_OFFSET(tCalculateRouteRequest, modifiers, 0);
PROTOCOL_OFFSET(tCalculateRouteRequest, seeds, 8);
PROTOCOL_OFFSET(tCalculateRouteRequest, seedCount, 16);
PROTOCOL_OFFSET(tCalculateRouteRequest, padding, 20);
PROTOCOL_OFFSET(tCalculateRouteRequest, destinations, 24);
PROTOCOL_OFFSET(tCalculateRouteRequest, destinationCount, 32);
PROTOCOL_OFFSET(tCalculateRouteRequest, options, 36);
PROTOCOL_OFFSET(tCalculateRouteRequest, routes, 40);
PROTOCOL_OFFSET(tCalculateRouteRequest, routeCapacity, 48);
PROTOCOL_OFFSET(tCalculateRouteRequest, callerStatus, 52);

/* The client receives `value` unchanged; `routeCount` is the number of routes calculated. */
typedef struct tCalculateRouteReply {
  uint32_t value;
  uint32_t routeCount;
  int32_t driverStatus;
} tCalculateRouteReply;
PROTOCOL_SIZE(tCalculateRouteReply, 12);
PROTOCOL_OFFSET(tCalculateRouteReply, value, 0);
PROTOCOL_OFFSET(tCalculateRouteReply, routeCount, 4);
PROTOCOL_OFFSET(tCalculateRouteReply, driverStatus, 8);

/* REQUEST_DESTROY_ROUTE, REQUEST_PROGRAM_ROUTE, REQUEST_UNPROGRAM_ROUTE, REQUEST_UNRESERVE_ROUTE. */
typedef struct tTicketRequest {
  uint32_t ticket;
  int32_t callerStatus;
} tTicketRequest;
PROTOCOL_SIZE(tTicketRequest, 8);
PROTOCOL_OFFSET(tTicketRequest, ticket, 0);
PROTOCOL_OFFSET(tTicketRequest, callerStatus, 4);

/* REQUEST_RESERVE_ROUTE: the buffer receives tRouteConflict records;
 * REQUEST_GET_ROUTE_TERMINAL_PATH: terminal ids. `count` is the buffer's capacity in records. */
typedef struct tTicketListRequest {
  uint32_t ticket;
  uint32_t padding;
  uint64_t buffer;
  uint32_t count;
  int32_t callerStatus;
} tTicketListRequest;
PROTOCOL_SIZE(tTicketListRequest, 24);
PROTOCOL_OFFSET(tTicketListRequest, ticket, 0);
PROTOCOL_OFFSET(tTicketListRequest, padding, 4);
PROTOCOL_OFFSET(tTicketListRequest, buffer, 8);
PROTOCOL_OFFSET(tTicketListRequest, count, 16);
PROTOCOL_OFFSET(tTicketListRequest, callerStatus, 20);

/* `count` is the number of records that exist; the driver writes as many as the capacity allows. */
typedef struct tTicketListReply {
  uint32_t count;
  int32_t driverStatus;
} tTicketListReply;
PROTOCOL_SIZE(tTicketListReply, 8);
PROTOCOL_OFFSET(tTicketListReply, count, 0);
PROTOCOL_OFFSET(tTicketListReply, driverStatus, 4);

/* REQUEST_GET_TOPOGRAPHY_NAME: `size` is the buffer's size in bytes. */
typedef struct tGetTopographyNameRequest {
  uint64_t buffer;
  uint32_t size;
  int32_t callerStatus;
} tGetTopographyNameRequest;
PROTOCOL_SIZE(tGetTopographyNameRequest, 16);
PROTOCOL_OFFSET(tGetTopographyNameRequest, buffer, 0);
PROTOCOL_OFFSET(tGetTopographyNameRequest, size, 8);
PROTOCOL_OFFSET(tGetTopographyNameRequest, callerStatus, 12);

/* REQUEST_RESET_TERMINAL: `floating` is 0 for the default state, 1 for the floating one. */
typedef struct tResetTerminalRequest {
  uint32_t terminal;
  uint32_t floating;
  int32_t callerStatus;
} tResetTerminalRequest;
PROTOCOL_SIZE(tResetTerminalRequest, 12);
PROTOCOL_OFFSET(tResetTerminalRequest, terminal, 0);
PROTOCOL_OFFSET(tResetTerminalRequest, floating, 4);
PROTOCOL_OFFSET(tResetTerminalRequest, callerStatus, 8);

/* REQUEST_CALCULATE_RESET_TERMINAL: as REQUEST_RESET_TERMINAL; `reserved` is 0. */
typedef struct tCalculateResetTerminalRequest {
  uint64_t reserved;
  uint32_t terminal;
  int32_t floating;
  int32_t callerStatus;
  uint32_t padding;
} tCalculateResetTerminalRequest;
PROTOCOL_SIZE(tCalculateResetTerminalRequest, 24);
PROTOCOL_OFFSET(tCalculateResetTerminalRequest, reserved, 0);
PROTOCOL_OFFSET(tCalculateResetTerminalRequest, terminal, 8);
PROTOCOL_OFFSET(tCalculateResetTerminalRequest, floating, 12);
PROTOCOL_OFFSET(tCalculateResetTerminalRequest, callerStatus, 16);
PROTOCOL_OFFSET(tCalculateResetTerminalRequest, padding, 20);

#endif
