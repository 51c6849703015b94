#ifndef ZOAPAL_PROTONS_IO_NOTIFICATION_WINDOWSU_TIONOTIFICATION_H
#define ZOAPAL_PROTONS_IO_NOTIFICATION_WINDOWSU_TIONOTIFICATION_H

#include <windows.h>

#include <cstdint>
#include <memory>

#include "zoapal/protons/driver/windowsu/tdeviceinterfaceproxy.h"
#include "zoapal/protons/driver/windowsu/tportregistry.h"
#include "zoapal/protons/io_notification/windowsu/tionotificationreader.h"

namespace nQUENRA1400::nZOAPAL000 {

// A registration for events of a device: derive from it and enable it. The driver knows it by its
// address. Its owner disables it, ends the reader, and only then destroys it and closes the proxy.
// One thread at a time; the reader may run meanwhile.
class tIONotification {
 public:
  tIONotification() = default;
  tIONotification(const tIONotification&) = delete;
  tIONotification& operator=(const tIONotification&) = delete;
  virtual ~tIONotification();

  // Registers for the events of a mask; their notices arrive at the reader. Returns true when it is
  // enabled. An enabled notification is disabled first; enabled at another reader, it no longer
  // receives packets of the first one.
  // Failures: associating the device with the reader's port, "tdeviceinterfaceproxy" line 315; arming
  // the delivery, line 333; registering, "tionotification" line 134; memory, line 120.
  virtual bool enable(tIONotificationReader& reader, tDeviceInterfaceProxy& proxy, uint32_t mask,
                      nZOAPALS100::tStatus& status) noexcept;
  // Ends the registration, without waiting for its packet. Does not report what the driver replies.
  virtual void disable() noexcept;

  [[nodiscard]] bool isEnabled() const noexcept { return enabled_; }
  // As the driver knows it, also for a derived object.
  [[nodiscard]] uint64_t address() const noexcept { return reinterpret_cast<uintptr_t>(this); }

 private:
  void registerAt(const std::shared_ptr<tPortRegistry>& registry,
                  nZOAPALS100::tStatus& status) noexcept;
  [[nodiscard]] bool prepare(const std::shared_ptr<tPortRegistry>& registry) noexcept;

  tDeviceInterfaceProxy* proxy_ = nullptr;
  uint32_t mask_ = 0;
  bool enabled_ = false;
  std::shared_ptr<tPortRegistry> registry_;
  std::shared_ptr<tPortRequest> registration_;  // the last one; earlier ones are in the registry
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
