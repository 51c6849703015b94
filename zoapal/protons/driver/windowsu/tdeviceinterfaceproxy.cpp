#include "zoapal/protons/driver/windowsu/tdeviceinterfaceproxy.h"

#include "protocol/requestcodes.h"
#include "zoapal/protons/driver/windowsu/tpendingrequest.h"
#include "zoapal/protons/driver/windowsu/transfer.h"
#include "zoapal/protons/driver/windowsu/ttransferevent.h"
#include "zoapal/protons/status/win32error.h"
#include "zoapal/protons/synchronization/windowsu/wait.h"

namespace nQUENRA1400::nZOAPAL000 {
namespace {

using nZOAPALS100::tStatus;

constexpr uint32_t kOpenLine = 43;
constexpr uint32_t kCreateEventLine = 51;
constexpr uint32_t kCreateAcceptedEventLine = 238;
constexpr uint32_t kAssociateLine = 315;
constexpr uint32_t kArmDeliveryLine = 333;

// How long a cancelled request is waited for: a driver takes no time for it, unless it is broken.
constexpr int kCancelPauses = 2000;
constexpr DWORD kCancelPauseMilliseconds = 1;

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
    mergeWin32Failure(GetLastError(), status, kTransferFile, kOpenLine);
    return;
  }
  event_.reset(CreateEventA(nullptr, TRUE, FALSE, nullptr));
  if (!event_) {
    mergeWin32Failure(GetLastError(), status, kTransferFile, kCreateEventLine);
    close();
  }
}

void tDeviceInterfaceProxy::open(const tDevicePath& path, tStatus& status) noexcept {
  open(path.text, status);
}

void tDeviceInterfaceProxy::close() noexcept {
  if (delivery_ && !cancelRequest(delivery_->notificationKey)) {
    // The driver may still write into it: better lost than freed.
    static_cast<void>(delivery_.release());
  }
  delivery_.reset();
  completionPort_ = nullptr;
  file_.reset();
  event_.reset();
}

template <class Transfer>
uint32_t tDeviceInterfaceProxy::transfer(tTransferLines lines, tStatus& status,
                                         Transfer carryOut) noexcept {
  if (status.isError()) {
    return 0;
  }
  if (!isOpen()) {
    mergeWin32Failure(ERROR_INVALID_HANDLE, status, kTransferFile, lines.afterTheCall);
    return 0;
  }
  const tTransferEvent event(event_.get(), eventInUse_);
  if (event.get() == nullptr) {
    mergeWin32Failure(GetLastError(), status, kTransferFile, lines.afterTheCall);
    return 0;
  }
  return carryOut(event.get());
}

uint32_t tDeviceInterfaceProxy::deviceControl(uint32_t code, const void* in, uint32_t inSize,
                                              void* out, uint32_t outSize,
                                              tStatus& status) noexcept {
  return transfer(kDeviceControlLines, status, [&](HANDLE event) noexcept {
    return controlDevice(file_.get(), event, code, in, inSize, out, outSize, status);
  });
}

uint32_t tDeviceInterfaceProxy::read(void* buffer, uint32_t size, tStatus& status) noexcept {
  return transfer(kReadLines, status, [&](HANDLE event) noexcept {
    return carryOutTransfer(file_.get(), event, kReadLines, status,
                            [=](HANDLE file, DWORD* bytes, OVERLAPPED* overlapped) noexcept {
                              return ReadFile(file, buffer, size, bytes, overlapped);
                            });
  });
}

uint32_t tDeviceInterfaceProxy::write(const void* buffer, uint32_t size, tStatus& status) noexcept {
  return transfer(kWriteLines, status, [&](HANDLE event) noexcept {
    return carryOutTransfer(file_.get(), event, kWriteLines, status,
                            [=](HANDLE file, DWORD* bytes, OVERLAPPED* overlapped) noexcept {
                              return WriteFile(file, buffer, size, bytes, overlapped);
                            });
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
    mergeWin32Failure(ERROR_INVALID_HANDLE, status, kTransferFile,
                      kDeviceControlLines.afterTheCall);
    return 0;
  }
  const tUniqueEvent accepted(CreateEventA(nullptr, TRUE, FALSE, nullptr));
  if (!accepted) {
    mergeWin32Failure(GetLastError(), status, kTransferFile, kCreateAcceptedEventLine);
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
    const tStatus& outcome = work->status;
    mergeStatus(status, outcome.code, outcome.component, outcome.file, outcome.line);
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

bool tDeviceInterfaceProxy::associate(HANDLE port, tStatus& status) noexcept {
  if (status.isError()) {
    return false;
  }
  // Who comes second goes on when the first has done it, or could not.
  const tSlimGuard guard(associating_);
  HANDLE before = nullptr;
  if (!completionPort_.compare_exchange_strong(before, port) && before == port) {
    return true;
  }
  bool isAssociated = false;
  if (!delivery_) {
    delivery_.reset(new (std::nothrow) tDelivery{.proxy = this});
  }
  if (!delivery_) {
    mergeStatus(status, nZOAPALS100::kMemoryFull, "quenra", kTransferFile, kAssociateLine);
  } else if (CreateIoCompletionPort(file_.get(), port,
                                    reinterpret_cast<ULONG_PTR>(&delivery_->notificationKey),
                                    0) == nullptr) {
    mergeWin32Failure(GetLastError(), status, kTransferFile, kAssociateLine);
  } else {
    isAssociated = true;
  }
  if (isAssociated) {
    armDelivery(status);
  } else {
    completionPort_ = before;
  }
  return isAssociated;
}

void tDeviceInterfaceProxy::armDelivery(tStatus& status) noexcept {
  if (status.isError()) {
    return;
  }
  if (!delivery_) {
    mergeWin32Failure(ERROR_INVALID_HANDLE, status, kTransferFile, kArmDeliveryLine);
    return;
  }
  // What a driver leaves out of a notice is nothing, not what the last one said.
  delivery_->rearmBuffer = {};
  if (const auto error = start(REQUEST_ARM_DELIVERY, nullptr, 0, &delivery_->rearmBuffer,
                               sizeof delivery_->rearmBuffer, delivery_->notificationKey)) {
    mergeWin32Failure(*error, status, kTransferFile, kArmDeliveryLine);
  }
}

std::optional<DWORD> tDeviceInterfaceProxy::startRequest(uint32_t code, const void* in,
                                                         uint32_t inSize,
                                                         OVERLAPPED& overlapped) noexcept {
  return start(code, in, inSize, nullptr, 0, overlapped);
}

std::optional<DWORD> tDeviceInterfaceProxy::start(uint32_t code, const void* in, uint32_t inSize,
                                                  void* out, uint32_t outSize,
                                                  OVERLAPPED& overlapped) noexcept {
  overlapped = {};
  if (DeviceIoControl(file_.get(), code, const_cast<void*>(in), inSize, out, outSize, nullptr,
                      &overlapped)) {
    return std::nullopt;
  }
  const DWORD error = GetLastError();
  if (error == ERROR_IO_PENDING) {
    return std::nullopt;
  }
  // The system goes on saying of a request that was refused that it is under way.
  overlapped = {};
  return error;
}

bool tDeviceInterfaceProxy::cancelRequest(OVERLAPPED& overlapped) noexcept {
  for (int i = 0; i < kCancelPauses && isUnderWay(overlapped); ++i) {
    // Again each time: it may have failed, and does no harm to a request that is about to end.
    CancelIoEx(file_.get(), &overlapped);
    if (isUnderWay(overlapped)) {
      Sleep(kCancelPauseMilliseconds);
    }
  }
  return !isUnderWay(overlapped);
}

}  // namespace nQUENRA1400::nZOAPAL000
