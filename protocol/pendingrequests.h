/* Requests that the driver keeps pending until the caller ends them, on every interface.
 *
 * A pending request has no reply. When the driver accepts it, the driver writes the request's
 * handle, a number other than 0, to an address of the caller and signals the caller's event. The
 * request completes when the caller ends it by that handle. */
#ifndef PROTOCOL_PENDINGREQUESTS_H
#define PROTOCOL_PENDINGREQUESTS_H

#include "protocol/layout.h"

/* REQUEST_PENDING_NARROW: for a `b` that fits in 32 bits. */
typedef struct tPendingNarrowRequest {
  uint64_t handleAddress; /* of the caller's u64 that receives the handle */
  uint64_t event;         /* the caller's event handle */
  uint32_t b;
  uint16_t a;
  uint8_t c;
  uint8_t padding;
} tPendingNarrowRequest;
PROTOCOL_SIZE(tPendingNarrowRequest, 24);
PROTOCOL_OFFSET(tPendingNarrowRequest, handleAddress, 0);
PROTOCOL_OFFSET(tPendingNarrowRequest, event, 8);
PROTOCOL_OFFSET(tPendingNarrowRequest, b, 16);
PROTOCOL_OFFSET(tPendingNarrowRequest, a, 20);
PROTOCOL_OFFSET(tPendingNarrowRequest, c, 22);
PROTOCOL_OFFSET(tPendingNarrowRequest, padding, 23);

/* REQUEST_PENDING_WIDE: for any other `b`. */
typedef struct tPendingWideRequest {
  uint64_t handleAddress;
  uint64_t event;
  uint64_t b;
  uint16_t a;
  uint8_t c;
  uint8_t padding[5];
} tPendingWideRequest;
PROTOCOL_SIZE(tPendingWideRequest, 32);
PROTOCOL_OFFSET(tPendingWideRequest, handleAddress, 0);
PROTOCOL_OFFSET(tPendingWideRequest, event, 8);
PROTOCOL_OFFSET(tPendingWideRequest, b, 16);
PROTOCOL_OFFSET(tPendingWideRequest, a, 24);
PROTOCOL_OFFSET(tPendingWideRequest, c, 26);
PROTOCOL_OFFSET(tPendingWideRequest, padding, 27);

/* REQUEST_END_PENDING: no reply. */
typedef struct tEndPendingRequest {
  uint64_t handle;
} tEndPendingRequest;
PROTOCOL_SIZE(tEndPendingRequest, 8);

#endif
