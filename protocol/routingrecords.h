/* Records in the buffers of trigger-routing requests, byte for byte, little-endian. */
#ifndef PROTOCOL_ROUTINGRECORDS_H
#define PROTOCOL_ROUTINGRECORDS_H

#include "protocol/layout.h"

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

#endif
