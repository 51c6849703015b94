/* Event notifications: REQUEST_REGISTER_NOTIFICATION, REQUEST_UNREGISTER_NOTIFICATION and
 * REQUEST_ARM_DELIVERY, supported on every interface of the driver. */
#ifndef SIMULATOR_MODEL_NOTIFICATIONS_H
#define SIMULATOR_MODEL_NOTIFICATIONS_H

#include "simulator/model/model.h"

bool isNotificationRequest(uint32_t code);
tModelReply carryOutNotificationRequest(tModel* model, const tModelRequest* request);

/* Notifies every registration for one of the events of a mask. A notice that cannot be delivered
 * yet is held until a delivery is armed. Returns the number of registrations notified. */
uint32_t notify(tModel* model, const tSimulatorNotice* notice);

/* Complete the registrations and armed deliveries of a file, or of all files, as aborted. */
void abortNotificationsOf(tModel* model, const tModelFile* file);
void abortAllNotifications(tModel* model);
/* Removes the request with this token; false if there is none. */
bool forgetNotificationRequest(tModel* model, uint64_t token);

#endif
