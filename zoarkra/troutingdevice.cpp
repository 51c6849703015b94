#include "zoarkra/troutingdevice.h"

#include <utility>

#include "protocol/routingrequests.h"
#include "zoapal/protons/io_notification/windowsu/tionotificationreader.h"

namespace zoark {

using nQUENRA1400::nZOAPAL000::createCompletionPort;
using nQUENRA1400::nZOAPAL000::tThreadedIONotificationReader;
using nZOAPALS100::tStatus;

tRoutingDevice::~tRoutingDevice() {
  tRoutingDevice::stopNotifications();
}

void tRoutingDevice::open(const char* name, tStatus& status) noexcept {
  device_.open(name, status);
}

void tRoutingDevice::startNotifications(iDemotionListener& listener, tStatus& status) {
  auto port = createCompletionPort(status);
  // A failure that maps to a warning leaves no port either.
  if (status.isError() || !port) {
    return;
  }
  reader_ = std::make_unique<tThreadedIONotificationReader>(std::move(port));
  notification_.setListener(&listener);
  reader_->start(&tDemotionNotification::receive, status);
  notification_.enable(*reader_, device_, ROUTING_NOTIFICATION_DEMOTED, status);
}

void tRoutingDevice::stopNotifications() noexcept {
  notification_.disable();
  reader_.reset();
}

bool tRoutingDevice::isListenerThread() const noexcept {
  return reader_ != nullptr && reader_->isCurrentThread();
}

std::unique_ptr<iRoutingDevice> makeRoutingDevice() {
  return std::make_unique<tRoutingDevice>();
}

void tDemotionNotification::receive(uint32_t kind, tIONotification* notification, const uint8_t*,
                                    uint32_t, nZOAPALS100::tStatus& status) noexcept {
  if (kind != nQUENRA1400::nZOAPAL000::kNotificationDelivered || notification == nullptr ||
      status.isError()) {
    return;
  }
  iDemotionListener* const listener = static_cast<tDemotionNotification*>(notification)->listener_;
  if (listener != nullptr) {
    listener->routeDemoted(notification);
  }
}

}  // namespace zoark
