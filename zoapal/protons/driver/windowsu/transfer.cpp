#include "zoapal/protons/driver/windowsu/transfer.h"

#include <atomic>

#include "zoapal/protons/synchronization/windowsu/wait.h"

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

uint32_t controlDevice(HANDLE file, HANDLE event, uint32_t code, const void* in, uint32_t inSize,
                       void* out, uint32_t outSize, nZOAPALS100::tStatus& status) noexcept {
  return carryOutTransfer(file, event, kDeviceControlLines, status,
                          [=](HANDLE device, DWORD* bytes, OVERLAPPED* overlapped) noexcept {
                            // The parameter is not const although Windows only reads from it.
                            return DeviceIoControl(device, code, const_cast<void*>(in), inSize, out,
                                                   outSize, bytes, overlapped);
                          });
}

}  // namespace nQUENRA1400::nZOAPAL000
