/* Requests that the driver keeps pending, on every interface: requests that the caller ends, and
 * event notifications. Byte for byte, little-endian. */
#ifndef PROTOCOL_PENDINGREQUESTS_H
#define PROTOCOL_PENDINGREQUESTS_H

#include "protocol/interfaces.h"

#define PROTOCOL_CHANNEL_CODE(function) PROTOCOL_REQUEST_CODE(0x22, 3, function)

#define REQUEST_PENDING_NARROW PROTOCOL_CHANNEL_CODE(0xF00)
#define REQUEST_PENDING_WIDE PROTOCOL_CHANNEL_CODE(0xF05)
#define REQUEST_END_PENDING PROTOCOL_CHANNEL_CODE(0xF01)
#define REQUEST_REGISTER_NOTIFICATION PROTOCOL_CHANNEL_CODE(0xF02)
#define REQUEST_UNREGISTER_NOTIFICATION PROTOCOL_CHANNEL_CODE(0xF04)
#define REQUEST_ARM_DELIVERY PROTOCOL_CHANNEL_CODE(0xF03)

PROTOCOL_ASSERT(REQUEST_PENDING_NARROW == 0x0022FC00u);
PROTOCOL_ASSERT(REQUEST_PENDING_WIDE == 0x0022FC14u);
PROTOCOL_ASSERT(REQUEST_END_PENDING == 0x0022FC04u);
PROTOCOL_ASSERT(REQUEST_REGISTER_NOTIFICATION == 0x0022FC08u);
PROTOCOL_ASSERT(REQUEST_UNREGISTER_NOTIFICATION == 0x0022FC10u);
PROTOCOL_ASSERT(REQUEST_ARM_DELIVERY == 0x0022FC0Cu);

/* Requests that stay pending until the caller ends them.
 *
 * A pending request has no reply. When the driver accepts it, the driver writes the request's
 * handle, a number other than 0, to an address of the caller and signals the caller's event. The
 * request completes when the caller ends it by that handle. */

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

/* Event notifications.
 *
 * A caller registers for a mask of events and passes an address that identifies the receiver. It
 * keeps one delivery request armed for each open device. The driver completes that request with the
 * next event and holds further events until the caller arms it again. The registration request
 * completes when the caller unregisters. */

/* REQUEST_REGISTER_NOTIFICATION: no reply. */
typedef struct tRegisterNotificationRequest {
  uint64_t notification; /* returned with every event */
  uint32_t mask;
  uint32_t padding;
} tRegisterNotificationRequest;
PROTOCOL_SIZE(tRegisterNotificationRequest, 16);
PROTOCOL_OFFSET(tRegisterNotificationRequest, notification, 0);
PROTOCOL_OFFSET(tRegisterNotificationRequest, mask, 8);

/* REQUEST_UNREGISTER_NOTIFICATION: no reply. */
typedef struct tUnregisterNotificationRequest {
  uint32_t mask;
} tUnregisterNotificationRequest;
PROTOCOL_SIZE(tUnregisterNotificationRequest, 4);

#define NOTIFICATION_PAYLOAD_CAPACITY 32

/* The reply of REQUEST_ARM_DELIVERY, which has no input. */
typedef struct tNotificationDelivery {
  uint64_t notification; /* as registered */
  uint32_t payloadSize;  /* at most NOTIFICATION_PAYLOAD_CAPACITY */
  uint8_t payload[NOTIFICATION_PAYLOAD_CAPACITY];
  uint8_t unused[4];
} tNotificationDelivery;
PROTOCOL_SIZE(tNotificationDelivery, 48);
PROTOCOL_OFFSET(tNotificationDelivery, notification, 0);
PROTOCOL_OFFSET(tNotificationDelivery, payloadSize, 8);
PROTOCOL_OFFSET(tNotificationDelivery, payload, 12);
PROTOCOL_OFFSET(tNotificationDelivery, unused, 44);

#endif
