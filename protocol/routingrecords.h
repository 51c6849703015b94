/* Records in the buffers of trigger-routing requests, byte for byte, little-endian. */
#ifndef PROTOCOL_ROUTINGRECORDS_H
#define PROTOCOL_ROUTINGRECORDS_H

#include "protocol/layout.h"

/* Constraints and modifiers are sets of bits; this is the only one there is. */
#define ROUTE_CONSTRAINT_INVERSION_NEEDED 0x1u

/* Options of a calculation: look at no reservation. */
#define ROUTE_OPTION_IGNORE_RESERVATIONS 0x1u

/* A terminal id that names no terminal. */
#define ROUTE_NO_TERMINAL 0u

/* Where a route may start. */
typedef struct tRouteSeed {
  uint32_t terminal;
  uint32_t cost;
  uint32_t constraints;
} tRouteSeed;
PROTOCOL_SIZE(tRouteSeed, 12);
PROTOCOL_OFFSET(tRouteSeed, terminal, 0);
PROTOCOL_OFFSET(tRouteSeed, cost, 4);
PROTOCOL_OFFSET(tRouteSeed, constraints, 8);

/* What a route has to do, and what it does if that can be had. */
typedef struct tRouteModifiers {
  uint32_t required;
  uint32_t optional;
} tRouteModifiers;
PROTOCOL_SIZE(tRouteModifiers, 8);
PROTOCOL_OFFSET(tRouteModifiers, required, 0);
PROTOCOL_OFFSET(tRouteModifiers, optional, 4);

/* A calculated route. `seed` is the index of the seed it starts from; `inverts` is not 0 when it
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

/* A route of a session that holds what another route needs. */
typedef struct tRouteConflict {
  uint64_t session;
  uint32_t ticket;
  uint32_t padding;
} tRouteConflict;
PROTOCOL_SIZE(tRouteConflict, 16);
PROTOCOL_OFFSET(tRouteConflict, session, 0);
PROTOCOL_OFFSET(tRouteConflict, ticket, 8);
PROTOCOL_OFFSET(tRouteConflict, padding, 12);

#endif
