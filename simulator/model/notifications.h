/* Telling callers of events: REQUEST_REGISTER_NOTIFICATION, REQUEST_UNREGISTER_NOTIFICATION and
 * REQUEST_ARM_DELIVERY, which every interface of the driver takes. */
#ifndef SIMULATOR_MODEL_NOTIFICATIONS_H
#define SIMULATOR_MODEL_NOTIFICATIONS_H

#include "simulator/model/model.h"

bool isNotificationRequest(uint32_t code);
tModelReply carryOutNotificationRequest(tModel* model, const tModelRequest* request);

/* Tells everybody who is registered for one of the events of a mask. What cannot be delivered yet is
 * kept until a delivery is armed. Returns how many were told. */
uint32_t notify(tModel* model, const tSimulatorNotice* notice);

/* Completes what a file, or the whole machine, has registered and armed, as aborted. */
void abortNotificationsOf(tModel* model, const tModelFile* file);
void abortAllNotifications(tModel* model);
/* Forgets the request with this token; false when there is none. */
bool forgetNotificationRequest(tModel* model, uint64_t token);

#endif
