#include "zoapal/protons/io_notification/windowsu/tionotificationreader.h"

#include <windows.h>

#include <algorithm>
#include <new>
#include <utility>

#include "zoapal/protons/driver/windowsu/tdeviceinterfaceproxy.h"
#include "zoapal/protons/io_notification/windowsu/tionotification.h"

namespace nQUENRA1400::nZOAPAL000 {
namespace {

using nZOAPALS100::tSourceLocation;
using nZOAPALS100::tStatus;

constexpr const char* kFile = "tionotification";
constexpr tSourceLocation kCreate{kFile, 31};
constexpr tSourceLocation kWait{kFile, 59};
constexpr tSourceLocation kTooLarge{kFile, 76};
constexpr tSourceLocation kWake{kFile, 101};
constexpr tSourceLocation kWakeAndJoin{"wait", 40};
constexpr DWORD kWakeBytes = sizeof(tNotificationDelivery);

// A driver completes a cancelled request at once, unless it misbehaves.
constexpr ULONGLONG kDrainMilliseconds = 2000;
// A cancellation that failed is repeated after this time.
constexpr DWORD kCancelAgainMilliseconds = 10;

struct tPacket {
  ULONG_PTR key = 0;
  OVERLAPPED* overlapped = nullptr;
  bool succeeded = false;

  [[nodiscard]] bool isWakeUp() const noexcept { return key == 0 && overlapped == nullptr; }
  [[nodiscard]] bool isDelivery() const noexcept {
    return reinterpret_cast<ULONG_PTR>(overlapped) == key;
  }
};

// Returns false when no packet was dequeued; the last error gives the reason.
bool dequeue(HANDLE port, tPacket& packet, DWORD timeoutMs) noexcept {
  DWORD bytes = 0;
  packet = {};
  packet.succeeded =
      GetQueuedCompletionStatus(port, &bytes, &packet.key, &packet.overlapped, timeoutMs) != FALSE;
  return packet.succeeded || packet.overlapped != nullptr;
}

std::shared_ptr<tPortRegistry> makeRegistry() noexcept {
  try {
    return std::make_shared<tPortRegistry>();
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

// Copies a notice out of its delivery and arms the next one. Returns the notification's address as
// the driver gave it; 0 for a payload that is too large, which leaves the delivery unarmed.
uint64_t readNotice(tPortRegistry& registry, const tDelivery& delivery, uint8_t* payload,
                    uint32_t& payloadSize, tStatus& status) noexcept {
  const tNotificationDelivery& notice = delivery.rearmBuffer;
  if (notice.payloadSize > kNotificationPayloadCapacity) {
    mergeStatus(status, nZOAPALS100::kNotificationTooLarge, kTooLarge);
    return 0;
  }
  payloadSize = notice.payloadSize;
  std::copy_n(notice.payload, payloadSize, payload);
  const uint64_t address = notice.notification;
  registry.markIdle(delivery);
  tStatus unreported;
  delivery.proxy->armDelivery(unreported);
  return address;
}

}  // namespace

tUniquePort createCompletionPort(nZOAPALS100::tStatus& status) noexcept {
  constexpr DWORD kThreads = 1;
  if (status.isError()) {
    return {};
  }
  tUniquePort port(CreateIoCompletionPort(INVALID_HANDLE_VALUE, nullptr, 0, kThreads));
  if (!port) {
    mergeWin32Failure(GetLastError(), status, kCreate);
  }
  return port;
}

tIONotificationReader::tIONotificationReader(tUniquePort port) noexcept
    : port_(std::move(port)), registry_(makeRegistry()) {}

tIONotificationReader::~tIONotificationReader() {
  if (registry_) {
    drain();
  }
}

void tIONotificationReader::drain() noexcept {
  const ULONGLONG start = GetTickCount64();
  while (registry_->cancelAll()) {
    if (GetTickCount64() - start >= kDrainMilliseconds) {
      tPortRegistry::abandon(registry_);
      return;
    }
    tPacket packet;
    if (dequeue(port_.get(), packet, kCancelAgainMilliseconds)) {
      discard(registry_->resolve(packet.overlapped));
    } else if (GetLastError() != WAIT_TIMEOUT) {
      Sleep(kCancelAgainMilliseconds);
    }
  }
}

tIONotification* tIONotificationReader::wait(uint32_t& kind, uint8_t* payload,
                                             uint32_t& payloadSize, tStatus& status,
                                             uint32_t timeoutMs) noexcept {
  kind = kNotificationDelivered;
  payloadSize = 0;
  while (!status.isError()) {
    tPacket packet;
    if (!dequeue(port_.get(), packet, timeoutMs)) {
      mergeWin32Failure(GetLastError(), status, kWait);
      return nullptr;
    }
    if (packet.isWakeUp()) {
      kind = kNotificationWakeUp;
      return nullptr;
    }
    const tDequeued dequeued = registry_ ? registry_->resolve(packet.overlapped) : tDequeued{};
    if (packet.succeeded && packet.overlapped != nullptr) {
      return packet.isDelivery() ? readDelivery(dequeued, payload, payloadSize, status)
                                 : endRegistration(dequeued, kind);
    }
    // A request that was cancelled, or that failed.
    discard(dequeued);
  }
  return nullptr;
}

tIONotification* tIONotificationReader::readDelivery(const tDequeued& dequeued, uint8_t* payload,
                                                     uint32_t& payloadSize,
                                                     tStatus& status) noexcept {
  if (!dequeued.request) {
    return nullptr;
  }
  const auto& delivery = static_cast<const tDelivery&>(*dequeued.request);
  const uint64_t address = readNotice(*registry_, delivery, payload, payloadSize, status);
  return address == 0 ? nullptr : registry_->find(address);
}

tIONotification* tIONotificationReader::endRegistration(const tDequeued& dequeued,
                                                        uint32_t& kind) noexcept {
  kind = kNotificationRegistrationEnded;
  discard(dequeued);
  return dequeued.notification;
}

void tIONotificationReader::discard(const tDequeued& dequeued) noexcept {
  if (dequeued.request) {
    registry_->markIdle(*dequeued.request);
  }
}

void tIONotificationReader::wake(tStatus& status) noexcept {
  if (!status.isError() && !PostQueuedCompletionStatus(port_.get(), kWakeBytes, 0, nullptr)) {
    mergeWin32Failure(GetLastError(), status, kWake);
  }
}

// ---- tThreadedIONotificationReader ----

tThreadedIONotificationReader::~tThreadedIONotificationReader() {
  // Also a thread whose priority start() could not set.
  if (thread_.isStarted()) {
    wakeAndJoin();
  }
}

// Without a wake-up the thread would never end.
void tThreadedIONotificationReader::wakeAndJoin() noexcept {
  repeatUntilDone(kWakeAndJoin, "ASSERT(PostQueuedCompletionStatus)", [this]() noexcept {
    tStatus posting;
    tIONotificationReader::wake(posting);
    // A warning is a failure as well: no wake-up was posted.
    return posting.code == 0;
  });
  thread_.join();
}

void tThreadedIONotificationReader::start(tCallback callback, tStatus& status) noexcept {
  if (status.isError()) {
    return;
  }
  callback_ = callback;
  thread_.start<&runLoop>(this, status);
  thread_.setPriority(THREAD_PRIORITY_NORMAL, status);
  if (thread_.isStarted()) {
    nameThreadForDebuggers(thread_.id());
  }
  running_ = !status.isError();
}

void tThreadedIONotificationReader::runLoop(void* reader) noexcept {
  static_cast<tThreadedIONotificationReader*>(reader)->loop();
}

void tThreadedIONotificationReader::loop() noexcept {
  for (;;) {
    tStatus status;
    uint32_t kind = kNotificationDelivered;
    uint32_t payloadSize = 0;
    uint8_t payload[kNotificationPayloadCapacity] = {};
    tIONotification* const notification = wait(kind, payload, payloadSize, status, INFINITE);
    if (kind == kNotificationWakeUp) {
      return;
    }
    callback_(kind, notification, payload, payloadSize, status);
  }
}

}  // namespace nQUENRA1400::nZOAPAL000
