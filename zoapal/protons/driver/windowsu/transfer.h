#ifndef ZOAPAL_PROTONS_DRIVER_WINDOWSU_TRANSFER_H
#define ZOAPAL_PROTONS_DRIVER_WINDOWSU_TRANSFER_H

#include <windows.h>

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

}  // namespace nQUENRA1400::nZOAPAL000

#endif
