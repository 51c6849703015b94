#include "simulator/model/notifications.h"

#include <stddef.h>

#include "simulator/model/bytes.h"
#include "simulator/model/model.h"

static void complete(tModel* model, uint64_t token, uint32_t windowsError,
                     const tNotificationDelivery* notice) {
  model->host.completeRequest(model->host.context, token, windowsError, notice,
                              notice == NULL ? 0 : (uint32_t)sizeof(*notice));
}

/* ---- The three lists ---- */

static uint64_t removeRegistration(tNotificationList* list, uint32_t index) {
  const uint64_t token = list->registrations[index].token;
  --list->registrationCount;
  ++list->counts.unregistered;
  for (uint32_t i = index; i < list->registrationCount; ++i) {
    list->registrations[i] = list->registrations[i + 1];
  }
  return token;
}

static uint64_t removeDelivery(tNotificationList* list, uint32_t index) {
  const uint64_t token = list->deliveries[index].token;
  --list->deliveryCount;
  ++list->counts.disarmed;
  for (uint32_t i = index; i < list->deliveryCount; ++i) {
    list->deliveries[i] = list->deliveries[i + 1];
  }
  return token;
}

static tNotificationDelivery removeNotice(tNotificationList* list, uint32_t index) {
  const tNotificationDelivery notice = list->notices[index].notice;
  --list->noticeCount;
  for (uint32_t i = index; i < list->noticeCount; ++i) {
    list->notices[i] = list->notices[i + 1];
  }
  return notice;
}

static uint32_t findNotice(const tNotificationList* list, uint64_t file) {
  uint32_t index = 0;
  while (index < list->noticeCount && list->notices[index].file != file) {
    ++index;
  }
  return index;
}

static uint32_t findDelivery(const tNotificationList* list, uint64_t file) {
  uint32_t index = 0;
  while (index < list->deliveryCount && list->deliveries[index].file.file != file) {
    ++index;
  }
  return index;
}

static void dropNotices(tNotificationList* list, uint64_t file) {
  uint32_t index = findNotice(list, file);
  while (index < list->noticeCount) {
    removeNotice(list, index);
    ++list->counts.dropped;
    index = findNotice(list, file);
  }
}

/* ---- The requests ---- */

static tModelReply registerFile(tModel* model, const tModelRequest* request) {
  tNotificationList* list = &model->notifications;
  tRegisterNotificationRequest registering;
  if (request->inputSize != sizeof(registering) || request->token == 0) {
    return emptyReply(kWindowsErrorInvalidParameter);
  }
  if (list->registrationCount == SIMULATOR_NOTIFICATION_CAPACITY) {
    return emptyReply(kWindowsErrorNoSystemResources);
  }
  copyBytes(&registering, request->input, sizeof(registering));
  list->registrations[list->registrationCount] =
      (tRegistration){request->token, request->file, registering.notification, registering.mask};
  ++list->registrationCount;
  ++list->counts.registered;
  return emptyReply(kWindowsErrorIoPending);
}

/* Completes the registration request. Notices held for it stay: their events have happened. */
static tModelReply unregister(tModel* model, const tModelRequest* request) {
  tNotificationList* list = &model->notifications;
  tUnregisterNotificationRequest unregistering;
  if (request->inputSize != sizeof(unregistering)) {
    return emptyReply(kWindowsErrorInvalidParameter);
  }
  copyBytes(&unregistering, request->input, sizeof(unregistering));
  for (uint32_t i = 0; i < list->registrationCount; ++i) {
    const tRegistration* registration = &list->registrations[i];
    if (registration->file.file == request->file.file && registration->mask == unregistering.mask) {
      complete(model, removeRegistration(list, i), kWindowsErrorNone, NULL);
      return emptyReply(kWindowsErrorNone);
    }
  }
  return emptyReply(kWindowsErrorNotFound);
}

static tModelReply arm(tModel* model, const tModelRequest* request) {
  tNotificationList* list = &model->notifications;
  if (request->inputSize != 0 || request->token == 0) {
    return emptyReply(kWindowsErrorInvalidParameter);
  }
  if (request->outputSize < sizeof(tNotificationDelivery)) {
    return emptyReply(kWindowsErrorInsufficientBuffer);
  }
  const uint32_t held = findNotice(list, request->file.file);
  if (held != list->noticeCount) {
    const tNotificationDelivery notice = removeNotice(list, held);
    copyBytes(request->output, &notice, sizeof(notice));
    ++list->counts.delivered;
    return (tModelReply){kWindowsErrorNone, sizeof(notice)};
  }
  if (list->deliveryCount == SIMULATOR_NOTIFICATION_CAPACITY) {
    return emptyReply(kWindowsErrorNoSystemResources);
  }
  list->deliveries[list->deliveryCount] = (tArmedDelivery){request->token, request->file};
  ++list->deliveryCount;
  ++list->counts.armed;
  return emptyReply(kWindowsErrorIoPending);
}

bool isNotificationRequest(uint32_t code) {
  return code == REQUEST_REGISTER_NOTIFICATION || code == REQUEST_UNREGISTER_NOTIFICATION ||
         code == REQUEST_ARM_DELIVERY;
}

tModelReply carryOutNotificationRequest(tModel* model, const tModelRequest* request) {
  switch (request->code) {
    case REQUEST_REGISTER_NOTIFICATION:
      return registerFile(model, request);
    case REQUEST_UNREGISTER_NOTIFICATION:
      return unregister(model, request);
    default:
      return arm(model, request);
  }
}

/* ---- The events ---- */

/* False if the notice is dropped: no delivery is armed, and the list of held notices is full. */
static bool deliver(tModel* model, uint64_t file, const tNotificationDelivery* notice) {
  tNotificationList* list = &model->notifications;
  ++list->counts.raised;
  const uint32_t armed = findDelivery(list, file);
  if (armed != list->deliveryCount) {
    ++list->counts.delivered;
    complete(model, removeDelivery(list, armed), kWindowsErrorNone, notice);
    return true;
  }
  if (list->noticeCount == SIMULATOR_NOTIFICATION_CAPACITY) {
    ++list->counts.dropped;
    return false;
  }
  list->notices[list->noticeCount] = (tHeldNotice){file, *notice};
  ++list->noticeCount;
  return true;
}

static tNotificationDelivery noticeFor(const tRegistration* registration,
                                       const tSimulatorNotice* notice) {
  tNotificationDelivery delivery;
  fillWithZeros(&delivery, sizeof(delivery));
  delivery.notification =
      notice->notification != 0 ? notice->notification : registration->notification;
  delivery.payloadSize = notice->payloadSize;
  copyBytes(delivery.payload, notice->payload, sizeof(delivery.payload));
  return delivery;
}

uint32_t notify(tModel* model, const tSimulatorNotice* notice) {
  const tNotificationList* list = &model->notifications;
  uint32_t notified = 0;
  for (uint32_t i = 0; i < list->registrationCount; ++i) {
    const tRegistration* registration = &list->registrations[i];
    if ((registration->mask & notice->mask) != 0 &&
        (notice->file == 0 || notice->file == registration->file.file)) {
      const tNotificationDelivery delivery = noticeFor(registration, notice);
      notified += deliver(model, registration->file.file, &delivery) ? 1 : 0;
    }
  }
  return notified;
}

/* ---- The end ---- */

void abortNotificationsOf(tModel* model, const tModelFile* file) {
  tNotificationList* list = &model->notifications;
  uint32_t index = 0;
  while (index < list->registrationCount) {
    if (list->registrations[index].file.file == file->file) {
      complete(model, removeRegistration(list, index), kWindowsErrorOperationAborted, NULL);
    } else {
      ++index;
    }
  }
  for (index = findDelivery(list, file->file); index < list->deliveryCount;
       index = findDelivery(list, file->file)) {
    complete(model, removeDelivery(list, index), kWindowsErrorOperationAborted, NULL);
  }
  dropNotices(list, file->file);
}

void abortAllNotifications(tModel* model) {
  tNotificationList* list = &model->notifications;
  while (list->registrationCount != 0) {
    complete(model, removeRegistration(list, 0), kWindowsErrorOperationAborted, NULL);
  }
  while (list->deliveryCount != 0) {
    complete(model, removeDelivery(list, 0), kWindowsErrorOperationAborted, NULL);
  }
  list->counts.dropped += list->noticeCount;
  list->noticeCount = 0;
}

bool cancelNotificationRequest(tModel* model, uint64_t token) {
  tNotificationList* list = &model->notifications;
  for (uint32_t i = 0; i < list->registrationCount; ++i) {
    if (list->registrations[i].token == token) {
      removeRegistration(list, i);
      return true;
    }
  }
  for (uint32_t i = 0; i < list->deliveryCount; ++i) {
    if (list->deliveries[i].token == token) {
      removeDelivery(list, i);
      return true;
    }
  }
  return false;
}
