#ifndef ZOAPAL_PROTONS_IO_NOTIFICATION_WINDOWSU_NOTIFICATIONREGISTRY_H
#define ZOAPAL_PROTONS_IO_NOTIFICATION_WINDOWSU_NOTIFICATIONREGISTRY_H

#include <windows.h>

#include <cstdint>
#include <vector>

#include "zoapal/protons/synchronization/windowsu/tslimlock.h"

namespace nQUENRA1400::nZOAPAL000 {

class tIONotification;

// The notifications whose notices may arrive at a reader's port. The driver names them by address,
// and an address is not followed unless it is one of these. Any thread.
class tNotificationRegistry {
 public:
  // False when memory is short. Adding one twice is adding it once.
  [[nodiscard]] bool add(tIONotification& notification) noexcept;
  void remove(const tIONotification& notification) noexcept;

  // Null when there is no such notification.
  [[nodiscard]] tIONotification* findAddress(uint64_t address) noexcept;
  [[nodiscard]] tIONotification* findRegistration(const OVERLAPPED* overlapped) noexcept;

 private:
  tSlimLock lock_;
  std::vector<tIONotification*> notifications_;  // guarded by lock_
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
