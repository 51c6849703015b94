#include "zoapal/protons/driver/windowsu/tdeviceinterfaceproxy.h"

#include "zoapal/protons/driver/windowsu/ttransferevent.h"
#include "zoapal/protons/status/win32error.h"

namespace nQUENRA1400::nZOAPAL000 {
namespace {

using nZOAPALS100::tStatus;

constexpr const char* kFile = "tdeviceinterfaceproxy";
constexpr uint32_t kOpenLine = 43;
constexpr uint32_t kCreateEventLine = 51;

// With its lowest bit set, the event keeps the completion off a port that the handle may be
// associated with: whoever reads the port is to see notifications only. Handles are multiples of 4.
HANDLE taggedForNoPort(HANDLE event) noexcept {
  return static_cast<char*>(event) + 1;
}

// After a failed wait the system may still own the transfer, which writes into the caller's memory
// and into `overlapped`: neither may be left before it has ended.
void abandon(HANDLE file, OVERLAPPED& overlapped, HANDLE event) noexcept {
  CancelIoEx(file, &overlapped);
  while (WaitForSingleObject(event, INFINITE) != WAIT_OBJECT_0) {
    Sleep(1);
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
    mergeWin32Failure(GetLastError(), status, kFile, kOpenLine);
    return;
  }
  event_.reset(CreateEventA(nullptr, TRUE, FALSE, nullptr));
  if (!event_) {
    mergeWin32Failure(GetLastError(), status, kFile, kCreateEventLine);
    close();
  }
}

void tDeviceInterfaceProxy::open(const tDevicePath& path, tStatus& status) noexcept {
  open(path.text, status);
}

void tDeviceInterfaceProxy::close() noexcept {
  file_.reset();
  event_.reset();
}

template <class Start>
uint32_t tDeviceInterfaceProxy::transfer(Start start, tTransferLines lines,
                                         tStatus& status) noexcept {
  if (status.isError()) {
    return 0;
  }
  if (!isOpen()) {
    mergeWin32Failure(ERROR_INVALID_HANDLE, status, kFile, lines.afterTheCall);
    return 0;
  }
  const tTransferEvent event(event_.get(), eventInUse_);
  if (event.get() == nullptr) {
    mergeWin32Failure(GetLastError(), status, kFile, lines.afterTheCall);
    return 0;
  }
  OVERLAPPED overlapped{};
  overlapped.hEvent = taggedForNoPort(event.get());
  DWORD bytes = 0;
  if (start(file_.get(), &bytes, &overlapped)) {
    return bytes;
  }
  if (const DWORD error = GetLastError(); error != ERROR_IO_PENDING) {
    mergeWin32Failure(error, status, kFile, lines.afterTheCall);
    return 0;
  }
  if (!GetOverlappedResult(file_.get(), &overlapped, &bytes, TRUE)) {
    mergeWin32Failure(GetLastError(), status, kFile, lines.afterWaiting);
    abandon(file_.get(), overlapped, event.get());
    return 0;
  }
  return bytes;
}

uint32_t tDeviceInterfaceProxy::deviceControl(uint32_t code, const void* in, uint32_t inSize,
                                              void* out, uint32_t outSize,
                                              tStatus& status) noexcept {
  constexpr tTransferLines kLines{110, 115};
  return transfer(
      [=](HANDLE file, DWORD* bytes, OVERLAPPED* overlapped) noexcept {
        // The parameter is not const although the system only reads from it.
        return DeviceIoControl(file, code, const_cast<void*>(in), inSize, out, outSize, bytes,
                               overlapped);
      },
      kLines, status);
}

uint32_t tDeviceInterfaceProxy::read(void* buffer, uint32_t size, tStatus& status) noexcept {
  constexpr tTransferLines kLines{148, 153};
  return transfer(
      [=](HANDLE file, DWORD* bytes, OVERLAPPED* overlapped) noexcept {
        return ReadFile(file, buffer, size, bytes, overlapped);
      },
      kLines, status);
}

uint32_t tDeviceInterfaceProxy::write(const void* buffer, uint32_t size, tStatus& status) noexcept {
  constexpr tTransferLines kLines{189, 194};
  return transfer(
      [=](HANDLE file, DWORD* bytes, OVERLAPPED* overlapped) noexcept {
        return WriteFile(file, buffer, size, bytes, overlapped);
      },
      kLines, status);
}

}  // namespace nQUENRA1400::nZOAPAL000
