#include "zoapal/protons/driver/windowsu/transfer.h"

#include <atomic>

#include "zoapal/protons/thread/windowsu/tthread.h"

namespace nQUENRA1400::nZOAPAL000 {
namespace {

constexpr ULONG_PTR kStatusPending = 0x103;

}  // namespace

bool isPending(OVERLAPPED& overlapped) noexcept {
  return std::atomic_ref<ULONG_PTR>(overlapped.Internal).load(std::memory_order_acquire) ==
         kStatusPending;
}

HANDLE suppressCompletionPacket(HANDLE event) noexcept {
  return static_cast<char*>(event) + 1;
}

void abandonTransfer(HANDLE file, OVERLAPPED& overlapped, HANDLE event) noexcept {
  // A transfer may have ended because its file was closed, whose handle is then no longer valid.
  if (isPending(overlapped)) {
    CancelIoEx(file, &overlapped);
    waitFor(event);
  }
}

tTransferEvent::tTransferEvent(HANDLE shared, std::atomic_flag& sharedInUse) noexcept
    : sharedInUse_(sharedInUse), borrowed_(!sharedInUse.test_and_set(std::memory_order_acquire)) {
  if (borrowed_) {
    handle_ = shared;
  } else {
    own_.reset(CreateEventA(nullptr, TRUE, FALSE, nullptr));
    handle_ = own_.get();
  }
}

tTransferEvent::~tTransferEvent() {
  if (borrowed_) {
    sharedInUse_.clear(std::memory_order_release);
  }
}

}  // namespace nQUENRA1400::nZOAPAL000
