#ifndef ZOAPAL_PROTONS_DRIVER_WINDOWSU_TRANSFER_H
#define ZOAPAL_PROTONS_DRIVER_WINDOWSU_TRANSFER_H

#include <windows.h>

#include <atomic>

#include "zoapal/protons/handles/windowsu/tuniquehandle.h"
#include "zoapal/protons/status/win32error.h"

namespace nQUENRA1400::nZOAPAL000 {

inline constexpr const char* kTransferFile = "tdeviceinterfaceproxy";

// The source lines of the two ways in which a transfer fails.
struct tTransferLines {
  uint32_t afterWaiting;
  uint32_t afterTheCall;
};
inline constexpr tTransferLines kDeviceControlLines{110, 115};
inline constexpr tTransferLines kReadLines{148, 153};
inline constexpr tTransferLines kWriteLines{189, 194};

// Sets the lowest bit of the event, so that Windows queues no completion packet although the file
// may be associated with a port: the reader of that port expects notifications only. Handles are
// multiples of 4.
[[nodiscard]] HANDLE suppressCompletionPacket(HANDLE event) noexcept;

// True while Windows has not stored the final status of a request. A stored status proves that the
// request has ended; a missing one proves nothing before the completion packet, if any, is dequeued.
[[nodiscard]] bool isPending(OVERLAPPED& overlapped) noexcept;

// After a failed wait Windows may still own the transfer, which writes to the caller's memory and to
// `overlapped`: cancels it and waits for its end.
void abandonTransfer(HANDLE file, OVERLAPPED& overlapped, HANDLE event) noexcept;

// Starts one overlapped transfer and waits for its end. The event is manual-reset and serves no
// other transfer meanwhile. Returns the number of bytes transferred, 0 on failure.
template <class Start>
uint32_t carryOutTransfer(HANDLE file, HANDLE event, tTransferLines lines,
                          nZOAPALS100::tStatus& status, Start start) noexcept {
  OVERLAPPED overlapped{};
  overlapped.hEvent = suppressCompletionPacket(event);
  DWORD bytes = 0;
  if (start(file, &bytes, &overlapped)) {
    return bytes;
  }
  if (const DWORD error = GetLastError(); error != ERROR_IO_PENDING) {
    mergeWin32Failure(error, status, kTransferFile, lines.afterTheCall);
    return 0;
  }
  if (!GetOverlappedResult(file, &overlapped, &bytes, TRUE)) {
    mergeWin32Failure(GetLastError(), status, kTransferFile, lines.afterWaiting);
    abandonTransfer(file, overlapped, event);
    return 0;
  }
  return bytes;
}

// A device control request as such a transfer. Sizes in bytes.
uint32_t controlDevice(HANDLE file, HANDLE event, uint32_t code, const void* in, uint32_t inSize,
                       void* out, uint32_t outSize, nZOAPALS100::tStatus& status) noexcept;

// The event of one transfer. A proxy keeps one event for its transfers; a transfer that overlaps
// another creates its own, since an event that two transfers share shows the end of neither.
class tTransferEvent {
 public:
  tTransferEvent(HANDLE shared, std::atomic_flag& sharedInUse) noexcept
      : sharedInUse_(sharedInUse), borrowed_(!sharedInUse.test_and_set(std::memory_order_acquire)) {
    if (borrowed_) {
      handle_ = shared;
    } else {
      own_.reset(CreateEventA(nullptr, TRUE, FALSE, nullptr));
      handle_ = own_.get();
    }
  }
  tTransferEvent(const tTransferEvent&) = delete;
  tTransferEvent& operator=(const tTransferEvent&) = delete;
  ~tTransferEvent() {
    if (borrowed_) {
      sharedInUse_.clear(std::memory_order_release);
    }
  }

  // Null if no event could be created; the last error has the reason.
  [[nodiscard]] HANDLE get() const noexcept { return handle_; }

 private:
  std::atomic_flag& sharedInUse_;
  bool borrowed_;
  tUniqueEvent own_;
  HANDLE handle_ = nullptr;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
