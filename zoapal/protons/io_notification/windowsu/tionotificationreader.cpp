#include "zoapal/protons/io_notification/windowsu/tionotificationreader.h"

#include <algorithm>
#include <new>

#include "zoapal/protons/driver/windowsu/tdelivery.h"
#include "zoapal/protons/driver/windowsu/tdeviceinterfaceproxy.h"
#include "zoapal/protons/driver/windowsu/transfer.h"
#include "zoapal/protons/io_notification/windowsu/tionotification.h"
#include "zoapal/protons/status/win32error.h"

namespace nQUENRA1400::nZOAPAL000 {
namespace {

using nZOAPALS100::tSourceLocation;
using nZOAPALS100::tStatus;

constexpr const char* kFile = "tionotification";
constexpr uint32_t kWaitLine = 59;
constexpr tSourceLocation kTooLarge{kFile, 76};
constexpr uint32_t kWakeLine = 101;
constexpr DWORD kWakeBytes = sizeof(tNotificationDelivery);

struct tCompletion {
  ULONG_PTR key = 0;
  OVERLAPPED* overlapped = nullptr;

  [[nodiscard]] bool isWakeUp() const noexcept { return key == 0 && overlapped == nullptr; }
  [[nodiscard]] bool isDelivery() const noexcept {
    return reinterpret_cast<ULONG_PTR>(overlapped) == key;
  }
};

// The next completion that succeeded. Failed ones are nobody's concern: they are requests that were
// cancelled. False when the wait itself failed.
bool dequeue(HANDLE port, tCompletion& completion, tStatus& status, uint32_t timeoutMs) noexcept {
  for (;;) {
    DWORD bytes = 0;
    completion = {};
    const BOOL succeeded =
        GetQueuedCompletionStatus(port, &bytes, &completion.key, &completion.overlapped, timeoutMs);
    if (succeeded && (completion.overlapped != nullptr || completion.isWakeUp())) {
      return true;
    }
    if (!succeeded && completion.overlapped == nullptr) {
      mergeWin32Failure(GetLastError(), status, kFile, kWaitLine);
      return false;
    }
  }
}

std::shared_ptr<tNotificationRegistry> makeRegistry() noexcept {
  try {
    return std::make_shared<tNotificationRegistry>();
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

// Copies a notice out of its delivery, and has the next one delivered. Whom it is for, by address.
uint64_t takeNotice(tDelivery& delivery, uint8_t* payload, uint32_t& payloadSize,
                    tStatus& status) noexcept {
  if (isUnderWay(delivery.notificationKey)) {
    // A completion that the driver has told before: the request is the system's again.
    return 0;
  }
  const tNotificationDelivery& notice = delivery.rearmBuffer;
  if (notice.payloadSize > kNotificationPayloadCapacity) {
    mergeStatus(status, nZOAPALS100::kNotificationTooLarge, kTooLarge);
    return 0;
  }
  payloadSize = notice.payloadSize;
  std::copy_n(notice.payload, payloadSize, payload);
  const uint64_t address = notice.notification;
  tStatus unreported;
  delivery.proxy->armDelivery(unreported);
  return address;
}

}  // namespace

tIONotificationReader::tIONotificationReader(tUniquePort port) noexcept
    : port_(std::move(port)), registry_(makeRegistry()) {}

tIONotificationReader::~tIONotificationReader() = default;

tIONotification* tIONotificationReader::wait(uint32_t& kind, uint8_t* payload,
                                             uint32_t& payloadSize, tStatus& status,
                                             uint32_t timeoutMs) noexcept {
  kind = kNotificationDelivered;
  payloadSize = 0;
  tCompletion completion;
  if (status.isError() || !dequeue(port_.get(), completion, status, timeoutMs)) {
    return nullptr;
  }
  if (completion.isWakeUp()) {
    kind = kNotificationWakeUp;
    return nullptr;
  }
  if (!completion.isDelivery()) {
    kind = kNotificationRegistrationEnded;
    return registry_ ? registry_->findRegistration(completion.overlapped) : nullptr;
  }
  // The OVERLAPPED is the first member of its delivery.
  auto& delivery = *reinterpret_cast<tDelivery*>(completion.overlapped);
  const uint64_t address = takeNotice(delivery, payload, payloadSize, status);
  return registry_ && address != 0 ? registry_->findAddress(address) : nullptr;
}

void tIONotificationReader::wake(tStatus& status) noexcept {
  if (!status.isError() && !PostQueuedCompletionStatus(port_.get(), kWakeBytes, 0, nullptr)) {
    mergeWin32Failure(GetLastError(), status, kFile, kWakeLine);
  }
}

}  // namespace nQUENRA1400::nZOAPAL000
