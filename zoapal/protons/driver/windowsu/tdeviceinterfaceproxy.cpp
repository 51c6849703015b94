#include "zoapal/protons/driver/windowsu/tdeviceinterfaceproxy.h"

#include <new>

#include "protocol/pendingrequests.h"
#include "zoapal/protons/driver/windowsu/tpendingrequest.h"
#include "zoapal/protons/driver/windowsu/transfer.h"
#include "zoapal/protons/thread/windowsu/tthread.h"

namespace nQUENRA1400::nZOAPAL000 {
namespace {

using nZOAPALS100::tSourceLocation;
using nZOAPALS100::tStatus;

constexpr tSourceLocation kOpen{kTransferFile, 43};
constexpr tSourceLocation kCreateEvent{kTransferFile, 51};
constexpr tSourceLocation kCreateAcceptedEvent{kTransferFile, 238};
constexpr tSourceLocation kAssociate{kTransferFile, 315};
constexpr tSourceLocation kArmDelivery{kTransferFile, 333};

// Null when out of memory.
std::shared_ptr<tDelivery> makeDelivery() noexcept {
  try {
    return std::make_shared<tDelivery>();
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace

tDeviceInterfaceProxy::~tDeviceInterfaceProxy() {
  tDeviceInterfaceProxy::close();
}

bool tDeviceInterfaceProxy::isOpen() const noexcept {
  return static_cast<bool>(file_);
}

void tDeviceInterfaceProxy::open(const char* path, tStatus& status) noexcept {
  if (status.isError()) {
    return;
  }
  close();
  file_.reset(CreateFileA(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                          nullptr, OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr));
  if (!file_) {
    mergeWin32Failure(GetLastError(), status, kOpen);
    return;
  }
  event_.reset(CreateEventA(nullptr, TRUE, FALSE, nullptr));
  if (!event_) {
    mergeWin32Failure(GetLastError(), status, kCreateEvent);
    close();
  }
}

void tDeviceInterfaceProxy::open(const tDevicePath& path, tStatus& status) noexcept {
  open(path.text, status);
}

void tDeviceInterfaceProxy::close() noexcept {
  if (registry_) {
    registry_->detach(file_.get());
  }
  delivery_.reset();
  registry_.reset();
  completionPort_ = nullptr;
  file_.reset();
  event_.reset();
}

uint32_t tDeviceInterfaceProxy::deviceControl(uint32_t code, const void* in, uint32_t inSize,
                                              void* out, uint32_t outSize,
                                              tStatus& status) noexcept {
  if (status.isError()) {
    return 0;
  }
  const tTransferEvent event(event_.get(), eventInUse_);
  return transfer(file_.get(), event.get(), kDeviceControlSites, status,
                  [=, this](OVERLAPPED* overlapped, DWORD* bytes) noexcept {
                    // The parameter is not const although Windows only reads from it.
                    return DeviceIoControl(file_.get(), code, const_cast<void*>(in), inSize, out,
                                           outSize, bytes, overlapped);
                  });
}

uint32_t tDeviceInterfaceProxy::read(void* buffer, uint32_t size, tStatus& status) noexcept {
  if (status.isError()) {
    return 0;
  }
  const tTransferEvent event(event_.get(), eventInUse_);
  return transfer(file_.get(), event.get(), kReadSites, status,
                  [=, this](OVERLAPPED* overlapped, DWORD* bytes) noexcept {
                    return ReadFile(file_.get(), buffer, size, bytes, overlapped);
                  });
}

uint32_t tDeviceInterfaceProxy::write(const void* buffer, uint32_t size, tStatus& status) noexcept {
  if (status.isError()) {
    return 0;
  }
  const tTransferEvent event(event_.get(), eventInUse_);
  return transfer(file_.get(), event.get(), kWriteSites, status,
                  [=, this](OVERLAPPED* overlapped, DWORD* bytes) noexcept {
                    return WriteFile(file_.get(), buffer, size, bytes, overlapped);
                  });
}

uint64_t tDeviceInterfaceProxy::beginPendingRequest(uint16_t a, uint64_t b, uint8_t c,
                                                    tPendingRequest& request,
                                                    tStatus& status) noexcept {
  if (status.isError()) {
    return 0;
  }
  request = {};
  if (!isOpen()) {
    mergeWin32Failure(ERROR_INVALID_HANDLE, status, kDeviceControlSites.afterTheCall);
    return 0;
  }
  const tUniqueEvent accepted(CreateEventA(nullptr, TRUE, FALSE, nullptr));
  if (!accepted) {
    mergeWin32Failure(GetLastError(), status, kCreateAcceptedEvent);
    return 0;
  }
  auto work = makePendingWork(file_.get(), accepted.get(), a, b, c, status);
  if (!work) {
    return 0;
  }
  tUniqueThread worker = startWorker(work, status);
  if (!worker) {
    return 0;
  }
  // A request that fails, or that the driver completes at once, ends its worker.
  waitForEither(accepted.get(), worker.get());
  if (work->handle == 0) {
    waitFor(worker.get());
    mergeStatus(status, work->status.code, work->status.location());
    return 0;
  }
  request.handle_ = work->handle;
  request.work_ = std::move(work);
  request.worker_ = std::move(worker);
  return request.handle_;
}

void tDeviceInterfaceProxy::endPendingRequest(tPendingRequest& request) noexcept {
  if (request.handle_ == 0) {
    return;
  }
  const tEndPendingRequest end{request.handle_};
  tStatus status;
  deviceControl(REQUEST_END_PENDING, &end, sizeof end, nullptr, 0, status);
  if (!status.isError()) {
    waitFor(request.worker_.get());
  }
  request = {};
}

bool tDeviceInterfaceProxy::associate(const std::shared_ptr<tPortRegistry>& registry, HANDLE port,
                                      tStatus& status) noexcept {
  if (status.isError()) {
    return false;
  }
  // Serialises concurrent callers: the second one finds the association complete.
  const tGuard guard(associating_);
  const bool isAssociated = completionPort_ == port && registry_ == registry;
  if (!isAssociated && !createAssociation(registry, port, status)) {
    return false;
  }
  armDelivery(status);
  return true;
}

bool tDeviceInterfaceProxy::createAssociation(const std::shared_ptr<tPortRegistry>& registry,
                                              HANDLE port, tStatus& status) noexcept {
  const std::shared_ptr<tDelivery> delivery = makeDelivery();
  if (!delivery || !registry || !registry->add(delivery)) {
    mergeStatus(status, nZOAPALS100::kMemoryFull, kAssociate);
    return false;
  }
  delivery->file = file_.get();
  delivery->proxy = this;
  // Fails for a file that is associated with another port: a file has one port for life.
  if (CreateIoCompletionPort(file_.get(), port, delivery->notificationKey(), 0) == nullptr) {
    mergeWin32Failure(GetLastError(), status, kAssociate);
    registry->remove(*delivery);
    return false;
  }
  completionPort_ = port;
  registry_ = registry;
  delivery_ = delivery;
  return true;
}

void tDeviceInterfaceProxy::armDelivery(tStatus& status) noexcept {
  if (status.isError()) {
    return;
  }
  if (!delivery_) {
    mergeWin32Failure(ERROR_INVALID_HANDLE, status, kArmDelivery);
    return;
  }
  if (!registry_->markSent(*delivery_)) {
    return;
  }
  // A driver that fills less than it reports must not deliver the previous notice again.
  delivery_->rearmBuffer = {};
  if (const auto error = startRequest(REQUEST_ARM_DELIVERY, nullptr, 0, &delivery_->rearmBuffer,
                                      sizeof delivery_->rearmBuffer, *delivery_)) {
    registry_->markIdle(*delivery_);
    mergeWin32Failure(*error, status, kArmDelivery);
  }
}

std::optional<DWORD> tDeviceInterfaceProxy::startRequest(uint32_t code, const void* in,
                                                         uint32_t inSize, void* out,
                                                         uint32_t outSize,
                                                         tPortRequest& request) noexcept {
  request.overlapped = {};
  if (DeviceIoControl(file_.get(), code, const_cast<void*>(in), inSize, out, outSize, nullptr,
                      &request.overlapped)) {
    return std::nullopt;
  }
  const DWORD error = GetLastError();
  return error == ERROR_IO_PENDING ? std::nullopt : std::optional(error);
}

}  // namespace nQUENRA1400::nZOAPAL000
