#include "zoapal/protons/io_notification/windowsu/tionotification.h"

#include <new>

#include "protocol/notificationrequests.h"
#include "protocol/requestcodes.h"
#include "zoapal/protons/driver/windowsu/transfer.h"
#include "zoapal/protons/status/win32error.h"

namespace nQUENRA1400::nZOAPAL000 {
namespace {

using nZOAPALS100::tSourceLocation;
using nZOAPALS100::tStatus;

constexpr const char* kFile = "tionotification";
constexpr tSourceLocation kPrepare{kFile, 120};
constexpr uint32_t kRegisterLine = 134;

}  // namespace

tIONotification::~tIONotification() {
  if (registry_) {
    registry_->remove(*this);
  }
  if (overlapped_ && isUnderWay(*overlapped_)) {
    // The driver may still write into it: better lost than freed.
    static_cast<void>(overlapped_.release());
  }
}

bool tIONotification::enable(tIONotificationReader& reader, tDeviceInterfaceProxy& proxy,
                             uint32_t mask, tStatus& status) noexcept {
  if (status.isError()) {
    return enabled_;
  }
  if (enabled_) {
    disable();
  }
  proxy_ = &proxy;
  mask_ = mask;
  const bool isAssociated = proxy.associate(reader.port(), status);
  if (isAssociated) {
    registerAt(reader, status);
  }
  enabled_ = isAssociated && !status.isError();
  return enabled_;
}

void tIONotification::registerAt(tIONotificationReader& reader, tStatus& status) noexcept {
  if (status.isError()) {
    return;
  }
  if (overlapped_ && isUnderWay(*overlapped_)) {
    static_cast<void>(overlapped_.release());
  }
  overlapped_.reset(new (std::nothrow) OVERLAPPED{});
  registry_ = reader.registry();
  if (!overlapped_ || !registry_ || !registry_->add(*this)) {
    mergeStatus(status, nZOAPALS100::kMemoryFull, kPrepare);
    return;
  }
  const tRegisterNotificationRequest request{address(), mask_, 0};
  if (const auto error = proxy_->startRequest(REQUEST_REGISTER_NOTIFICATION, &request,
                                              sizeof request, *overlapped_)) {
    mergeWin32Failure(*error, status, kFile, kRegisterLine);
  }
}

void tIONotification::disable() noexcept {
  if (enabled_ && proxy_->isOpen()) {
    const tUnregisterNotificationRequest request{mask_};
    tStatus unreported;
    proxy_->deviceControl(REQUEST_UNREGISTER_NOTIFICATION, &request, sizeof request, nullptr, 0,
                          unreported);
    // A driver that has not ended the registration by now is made to.
    static_cast<void>(proxy_->cancelRequest(*overlapped_));
  }
  enabled_ = false;
}

}  // namespace nQUENRA1400::nZOAPAL000
