#include "zoapal/protons/io_notification/windowsu/notificationregistry.h"

#include <algorithm>
#include <new>

#include "zoapal/protons/io_notification/windowsu/tionotification.h"

namespace nQUENRA1400::nZOAPAL000 {
namespace {

template <class Condition>
tIONotification* findIf(const std::vector<tIONotification*>& notifications,
                        Condition condition) noexcept {
  const auto found = std::find_if(notifications.begin(), notifications.end(), condition);
  return found == notifications.end() ? nullptr : *found;
}

}  // namespace

bool tNotificationRegistry::add(tIONotification& notification) noexcept {
  const tSlimGuard guard(lock_);
  try {
    if (std::find(notifications_.begin(), notifications_.end(), &notification) ==
        notifications_.end()) {
      notifications_.push_back(&notification);
    }
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

void tNotificationRegistry::remove(const tIONotification& notification) noexcept {
  const tSlimGuard guard(lock_);
  std::erase(notifications_, &notification);
}

tIONotification* tNotificationRegistry::findAddress(uint64_t address) noexcept {
  const tSlimGuard guard(lock_);
  return findIf(notifications_, [address](const tIONotification* notification) {
    return notification->address() == address;
  });
}

tIONotification* tNotificationRegistry::findRegistration(const OVERLAPPED* overlapped) noexcept {
  const tSlimGuard guard(lock_);
  return findIf(notifications_, [overlapped](const tIONotification* notification) {
    return notification->registration() == overlapped;
  });
}

}  // namespace nQUENRA1400::nZOAPAL000
