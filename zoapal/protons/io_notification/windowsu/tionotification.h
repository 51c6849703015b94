#ifndef ZOAPAL_PROTONS_IO_NOTIFICATION_WINDOWSU_TIONOTIFICATION_H
#define ZOAPAL_PROTONS_IO_NOTIFICATION_WINDOWSU_TIONOTIFICATION_H

#include <windows.h>

#include <cstdint>
#include <memory>

#include "zoapal/protons/driver/windowsu/tdeviceinterfaceproxy.h"
#include "zoapal/protons/io_notification/windowsu/tionotificationreader.h"

namespace nQUENRA1400::nZOAPAL000 {

// Whoever wants to be told of a device's events: derive from it and enable it. The driver knows it by
// its address. Its owner disables it, ends the reader, and only then destroys it and closes the proxy.
class tIONotification {
 public:
  tIONotification() = default;
  tIONotification(const tIONotification&) = delete;
  tIONotification& operator=(const tIONotification&) = delete;
  virtual ~tIONotification();

  // Registers for the events of a mask; their notices arrive at the reader. True when it is enabled.
  // Failures: associating the device with the reader's port, "tdeviceinterfaceproxy" line 315; arming
  // the delivery, line 333; registering, "tionotification" line 134; memory, line 120.
  virtual bool enable(tIONotificationReader& reader, tDeviceInterfaceProxy& proxy, uint32_t mask,
                      nZOAPALS100::tStatus& status) noexcept;
  // Nothing new arrives for it any more. What the driver says to that is not reported.
  virtual void disable() noexcept;

  [[nodiscard]] bool isEnabled() const noexcept { return enabled_; }
  // As the driver knows it, also for what derives from it.
  [[nodiscard]] uint64_t address() const noexcept { return reinterpret_cast<uintptr_t>(this); }
  // The request whose completion tells that it is no longer registered; null before it was.
  [[nodiscard]] const OVERLAPPED* registration() const noexcept { return overlapped_.get(); }

 private:
  void registerAt(tIONotificationReader& reader, nZOAPALS100::tStatus& status) noexcept;

  tDeviceInterfaceProxy* proxy_ = nullptr;
  uint32_t mask_ = 0;
  bool enabled_ = false;
  // On its own, so that it can be left to a driver that does not give it back.
  std::unique_ptr<OVERLAPPED> overlapped_;
  std::shared_ptr<tNotificationRegistry> registry_;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
