/* Registrations, armed deliveries and held notices: lists of fixed capacity, oldest first. */
#ifndef SIMULATOR_MODEL_NOTIFICATIONLIST_H
#define SIMULATOR_MODEL_NOTIFICATIONLIST_H

#include "protocol/pendingrequests.h"
#include "simulator/model/modelfile.h"

typedef struct tRegistration {
  uint64_t token;
  tModelFile file;
  uint64_t notification;
  uint32_t mask;
} tRegistration;

typedef struct tArmedDelivery {
  uint64_t token;
  tModelFile file;
} tArmedDelivery;

/* A notice held until its file arms a delivery. */
typedef struct tHeldNotice {
  uint64_t file;
  tNotificationDelivery notice;
} tHeldNotice;

typedef struct tNotificationCounts {
  uint64_t registered;
  uint64_t unregistered;
  uint64_t armed;
  uint64_t disarmed;
  uint64_t raised;
  uint64_t delivered;
  uint64_t dropped;
} tNotificationCounts;

typedef struct tNotificationList {
  tNotificationCounts counts;
  uint32_t registrationCount;
  uint32_t deliveryCount;
  uint32_t noticeCount;
  tRegistration registrations[SIMULATOR_NOTIFICATION_CAPACITY];
  tArmedDelivery deliveries[SIMULATOR_NOTIFICATION_CAPACITY];
  tHeldNotice notices[SIMULATOR_NOTIFICATION_CAPACITY];
} tNotificationList;

#endif
