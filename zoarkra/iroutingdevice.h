#ifndef ZOARKRA_IROUTINGDEVICE_H
#define ZOARKRA_IROUTINGDEVICE_H

#include <memory>

#include "codegen/apalcodegen/iinterfaceproxy_routing.h"

namespace zoark {

// Is told of demotions, on a thread of the device.
class iDemotionListener {
 public:
  iDemotionListener() = default;
  iDemotionListener(const iDemotionListener&) = delete;
  iDemotionListener& operator=(const iDemotionListener&) = delete;
  virtual ~iDemotionListener() = default;

  // `notification` is the address of the object that is registered with the driver.
  virtual void routeDemoted(void* notification) noexcept = 0;
};

// What a session needs of the device that it opens. Operations do nothing when the status holds an
// error, and report into it.
class iRoutingDevice {
 public:
  iRoutingDevice() = default;
  iRoutingDevice(const iRoutingDevice&) = delete;
  iRoutingDevice& operator=(const iRoutingDevice&) = delete;
  virtual ~iRoutingDevice() = default;

  virtual void open(const char* name, nZOAPALS100::tStatus& status) noexcept = 0;

  // Tells `listener` of demotions from now on. May throw std::bad_alloc, and then tells nobody.
  virtual void startNotifications(iDemotionListener& listener, nZOAPALS100::tStatus& status) = 0;

  // When it returns, the listener is not being told of anything and never will be. May be called
  // more than once, and without a start.
  virtual void stopNotifications() noexcept = 0;

  [[nodiscard]] virtual nQUENRA1400::nZOAPAL000::iInterfaceProxy_routing& proxy() noexcept = 0;
};

// The device of the system's driver, not open yet. Throws std::bad_alloc.
[[nodiscard]] std::unique_ptr<iRoutingDevice> makeRoutingDevice();

}  // namespace zoark

#endif
