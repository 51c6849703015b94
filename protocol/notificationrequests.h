/* Event notifications, on every interface of the driver.
 *
 * A caller registers for a mask of events and passes an address that identifies the receiver. It
 * keeps one delivery request armed for each open device. The driver completes that request with the
 * next event and holds further events until the caller arms it again. The registration request
 * completes when the caller unregisters. */
#ifndef PROTOCOL_NOTIFICATIONREQUESTS_H
#define PROTOCOL_NOTIFICATIONREQUESTS_H

#include "protocol/layout.h"

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
