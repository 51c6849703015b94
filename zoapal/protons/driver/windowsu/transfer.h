#ifndef ZOAPAL_PROTONS_DRIVER_WINDOWSU_TRANSFER_H
#define ZOAPAL_PROTONS_DRIVER_WINDOWSU_TRANSFER_H

#include <windows.h>

#include <atomic>
#include <cstdint>

#include "zoapal/protons/handles/windowsu/tuniquehandle.h"
#include "zoapal/protons/status/tstatus.h"

namespace nQUENRA1400::nZOAPAL000 {

inline constexpr const char* kTransferFile = "tdeviceinterfaceproxy";

// The sites of the two ways in which a transfer fails.
struct tTransferSites {
  nZOAPALS100::tSourceLocation afterWaiting;
  nZOAPALS100::tSourceLocation afterTheCall;
};
inline constexpr tTransferSites kDeviceControlSites{{kTransferFile, 110}, {kTransferFile, 115}};
inline constexpr tTransferSites kReadSites{{kTransferFile, 148}, {kTransferFile, 153}};
inline constexpr tTransferSites kWriteSites{{kTransferFile, 189}, {kTransferFile, 194}};

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

// The event of one transfer. A proxy keeps one event for its transfers; a transfer that overlaps
// another creates its own, since an event that two transfers share shows the end of neither.
class tTransferEvent {
 public:
  tTransferEvent(HANDLE shared, std::atomic_flag& sharedInUse) noexcept;
  tTransferEvent(const tTransferEvent&) = delete;
  tTransferEvent& operator=(const tTransferEvent&) = delete;
  ~tTransferEvent();

  // Null if the proxy is closed, or if no event could be created, with the reason as the last error.
  [[nodiscard]] HANDLE get() const noexcept { return handle_; }

 private:
  std::atomic_flag& sharedInUse_;
  bool borrowed_;
  tUniqueEvent own_;
  HANDLE handle_ = nullptr;
};

// Starts one transfer on the file with start(overlapped, bytes), a call of Windows, and waits for its end.
// The event is manual-reset and serves no other transfer meanwhile; null if it could not be created, with
// the reason as the last error. Returns the number of bytes transferred, 0 on failure.
template <class Start>
uint32_t transfer(HANDLE file, HANDLE event, const tTransferSites& sites,
                  nZOAPALS100::tStatus& status, Start start) noexcept {
  if (file == INVALID_HANDLE_VALUE) {
    mergeWin32Failure(ERROR_INVALID_HANDLE, status, sites.afterTheCall);
    return 0;
  }
  if (event == nullptr) {
    mergeWin32Failure(GetLastError(), status, sites.afterTheCall);
    return 0;
  }
  OVERLAPPED overlapped{};
  overlapped.hEvent = suppressCompletionPacket(event);
  DWORD bytes = 0;
  if (start(&overlapped, &bytes)) {
    return bytes;
  }
  if (const DWORD error = GetLastError(); error != ERROR_IO_PENDING) {
    mergeWin32Failure(error, status, sites.afterTheCall);
    return 0;
  }
  if (!GetOverlappedResult(file, &overlapped, &bytes, TRUE)) {
    mergeWin32Failure(GetLastError(), status, sites.afterWaiting);
    abandonTransfer(file, overlapped, event);
    return 0;
  }
  return bytes;
}

}  // namespace nQUENRA1400::nZOAPAL000

#endif
