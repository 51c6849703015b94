#ifndef ZOAPAL_PROTONS_DRIVER_WINDOWSU_TPENDINGREQUEST_H
#define ZOAPAL_PROTONS_DRIVER_WINDOWSU_TPENDINGREQUEST_H

#include <cstdint>
#include <memory>

#include "zoapal/protons/driver/windowsu/pendingwork.h"
#include "zoapal/protons/handles/windowsu/tuniquehandle.h"

namespace nQUENRA1400::nZOAPAL000 {

// Stands for a request that the driver keeps pending. It is the caller's, who ends the request by
// iInterfaceProxy::endPendingRequest on the proxy that began it. Destroying it ends nothing: the
// request then stays pending until its device is closed.
class tPendingRequest {
 public:
  // As the driver gave it; 0 when nothing is pending.
  [[nodiscard]] uint64_t handle() const noexcept { return handle_; }

 private:
  friend class tDeviceInterfaceProxy;

  std::shared_ptr<tPendingWork> work_;
  tUniqueThread worker_;
  uint64_t handle_ = 0;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
