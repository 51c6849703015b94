/* Event notifications: REQUEST_REGISTER_NOTIFICATION, REQUEST_UNREGISTER_NOTIFICATION and
 * REQUEST_ARM_DELIVERY, supported on every interface of the driver. */
#ifndef SIMULATOR_MODEL_NOTIFICATIONS_H
#define SIMULATOR_MODEL_NOTIFICATIONS_H

#include "protocol/pendingrequests.h"
#include "simulator/model/host.h"

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

/* Registrations, armed deliveries and held notices: lists of fixed capacity, oldest first. */
typedef struct tNotificationList {
  tNotificationCounts counts;
  uint32_t registrationCount;
  uint32_t deliveryCount;
  uint32_t noticeCount;
  tRegistration registrations[SIMULATOR_NOTIFICATION_CAPACITY];
  tArmedDelivery deliveries[SIMULATOR_NOTIFICATION_CAPACITY];
  tHeldNotice notices[SIMULATOR_NOTIFICATION_CAPACITY];
} tNotificationList;

bool isNotificationRequest(uint32_t code);
tModelReply carryOutNotificationRequest(tModel* model, const tModelRequest* request);

/* Notifies every registration for one of the events of a mask. A notice that cannot be delivered
 * yet is held until a delivery is armed. Returns the number of registrations notified. */
uint32_t notify(tModel* model, const tSimulatorNotice* notice);

/* Complete the registrations and armed deliveries of a file, or of all files, as aborted. */
void abortNotificationsOf(tModel* model, const tModelFile* file);
void abortAllNotifications(tModel* model);
/* Removes the request with this token, which its host cancels; false if there is none. */
bool cancelNotificationRequest(tModel* model, uint64_t token);

#endif
