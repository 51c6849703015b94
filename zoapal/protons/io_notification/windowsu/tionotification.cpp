#include "zoapal/protons/io_notification/windowsu/tionotification.h"

#include <new>

#include "protocol/pendingrequests.h"
#include "zoapal/protons/status/tstatus.h"

namespace nQUENRA1400::nZOAPAL000 {
namespace {

using nZOAPALS100::tSourceLocation;
using nZOAPALS100::tStatus;

constexpr const char* kFile = "tionotification";
constexpr tSourceLocation kPrepare{kFile, 120};
constexpr tSourceLocation kRegister{kFile, 134};

// Null when out of memory.
std::shared_ptr<tPortRequest> makeRequest() noexcept {
  try {
    return std::make_shared<tPortRequest>();
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace

tIONotification::~tIONotification() {
  if (registry_) {
    registry_->remove(*this);
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
  if (registry_ && registry_ != reader.registry()) {
    registry_->remove(*this);
    registry_.reset();
  }
  proxy_ = &proxy;
  mask_ = mask;
  const bool isAssociated = proxy.associate(reader.registry(), reader.port(), status);
  if (isAssociated) {
    registerAt(reader.registry(), status);
  }
  enabled_ = isAssociated && !status.isError();
  return enabled_;
}

// A request of its own for each registration: Windows owns that of an earlier one until its packet
// is dequeued.
bool tIONotification::prepare(const std::shared_ptr<tPortRegistry>& registry) noexcept {
  registration_ = makeRequest();
  if (!registration_ || !registry->add(*this)) {
    return false;
  }
  registry_ = registry;
  registration_->file = proxy_->file();
  registration_->notification = this;
  return registry->add(registration_);
}

void tIONotification::registerAt(const std::shared_ptr<tPortRegistry>& registry,
                                 tStatus& status) noexcept {
  if (status.isError()) {
    return;
  }
  if (!prepare(registry)) {
    mergeStatus(status, nZOAPALS100::kMemoryFull, kPrepare);
    return;
  }
  const tRegisterNotificationRequest request{address(), mask_, 0};
  static_cast<void>(registry->markSent(*registration_));
  if (const auto error = proxy_->startRequest(REQUEST_REGISTER_NOTIFICATION, &request,
                                              sizeof request, nullptr, 0, *registration_)) {
    registry->markIdle(*registration_);
    mergeWin32Failure(*error, status, kRegister);
  }
  // Now, if the call has failed; with its packet otherwise.
  registry->remove(*registration_);
}

void tIONotification::disable() noexcept {
  if (enabled_ && proxy_->isOpen()) {
    const tUnregisterNotificationRequest request{mask_};
    tStatus unreported;
    proxy_->deviceControl(REQUEST_UNREGISTER_NOTIFICATION, &request, sizeof request, nullptr, 0,
                          unreported);
    // Ends the registration also if the driver did not.
    registry_->cancel(*registration_);
  }
  enabled_ = false;
}

}  // namespace nQUENRA1400::nZOAPAL000
