#ifndef ZOARKRA_IROUTINGDEVICE_H
#define ZOARKRA_IROUTINGDEVICE_H

#include <memory>

#include "codegen/apalcodegen/tinterfaceproxy_routing.h"

namespace zoark {

// Receives demotions, on a thread of the device.
class iDemotionListener {
 public:
  iDemotionListener() = default;
  iDemotionListener(const iDemotionListener&) = delete;
  iDemotionListener& operator=(const iDemotionListener&) = delete;
  virtual ~iDemotionListener() = default;

  // `notification`: the address of the object that is registered with the driver.
  virtual void routeDemoted(void* notification) noexcept = 0;
};

// The device of a session. Operations do nothing when the status holds an error, and report into it.
class iRoutingDevice {
 public:
  iRoutingDevice() = default;
  iRoutingDevice(const iRoutingDevice&) = delete;
  iRoutingDevice& operator=(const iRoutingDevice&) = delete;
  virtual ~iRoutingDevice() = default;

  virtual void open(const char* name, nZOAPALS100::tStatus& status) noexcept = 0;

  // Delivers demotions to `listener` from now on; none after std::bad_alloc, which it may throw.
  virtual void startNotifications(iDemotionListener& listener, nZOAPALS100::tStatus& status) = 0;

  // Waits for a call of the listener that is running; none follows. May be called more than once, and
  // without a start.
  virtual void stopNotifications() noexcept = 0;

  // True inside a call of the listener.
  [[nodiscard]] virtual bool isListenerThread() const noexcept = 0;

  [[nodiscard]] virtual nQUENRA1400::nZOAPAL000::iInterfaceProxy_routing& proxy() noexcept = 0;
};

// The device of the system's driver, not open yet. Throws std::bad_alloc.
[[nodiscard]] std::unique_ptr<iRoutingDevice> makeRoutingDevice();

}  // namespace zoark

#endif
