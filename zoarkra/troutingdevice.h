#ifndef ZOARKRA_TROUTINGDEVICE_H
#define ZOARKRA_TROUTINGDEVICE_H

#include <memory>

#include "codegen/apalcodegen/tinterfaceproxy_routing.h"
#include "zoapal/protons/driver/windowsu/tdeviceinterfaceproxy.h"
#include "zoapal/protons/io_notification/windowsu/tionotification.h"
#include "zoapal/protons/io_notification/windowsu/tionotificationreader.h"
#include "zoarkra/iroutingdevice.h"

namespace zoark {

// A session's registration for demotions.
class tDemotionNotification final : public nQUENRA1400::nZOAPAL000::tIONotification {
 public:
  // Must not change while the notification is enabled.
  void setListener(iDemotionListener* listener) noexcept { listener_ = listener; }

  // The callback of a reader that serves only such notifications. It ignores the end of the
  // registration, a failed wait and a delivery without a notification.
  static void receive(uint32_t kind, nQUENRA1400::nZOAPAL000::tIONotification* notification,
                      const uint8_t* payload, uint32_t payloadSize,
                      nZOAPALS100::tStatus& status) noexcept;

 private:
  iDemotionListener* listener_ = nullptr;
};

// The device of the system's driver.
class tRoutingDevice final : public iRoutingDevice {
 public:
  ~tRoutingDevice() override;

  void open(const char* name, nZOAPALS100::tStatus& status) noexcept override;
  void startNotifications(iDemotionListener& listener, nZOAPALS100::tStatus& status) override;
  void stopNotifications() noexcept override;
  [[nodiscard]] bool isListenerThread() const noexcept override;
  [[nodiscard]] nQUENRA1400::nZOAPAL000::iInterfaceProxy_routing& proxy() noexcept override {
    return routing_;
  }

 private:
  // In this order, so that the reader ends before the device that it reads from is closed.
  nQUENRA1400::nZOAPAL000::tDeviceInterfaceProxy device_;
  nQUENRA1400::nZOAPAL000::tInterfaceProxy_routing routing_{device_};
  tDemotionNotification notification_;
  std::unique_ptr<nQUENRA1400::nZOAPAL000::tThreadedIONotificationReader> reader_;
};

}  // namespace zoark

#endif
