#include "tools/quenra/update/tupdatelock.h"

#include <windows.h>

namespace nCommandLine {

tLockState tUpdateLock::acquire(std::chrono::milliseconds timeout) noexcept {
  if (!mutex_) {
    mutex_.reset(CreateMutexW(nullptr, FALSE, L"Global\\quenra-firmware-update"));
  }
  const DWORD waited =
      mutex_ ? WaitForSingleObject(mutex_.get(), static_cast<DWORD>(timeout.count())) : WAIT_FAILED;
  switch (waited) {
    case WAIT_OBJECT_0:
      return tLockState::acquired;
    case WAIT_ABANDONED:
      return tLockState::abandoned;
    case WAIT_TIMEOUT:
      return tLockState::busy;
    default:
      failure_ = {static_cast<int>(GetLastError()), std::system_category()};
      return tLockState::failed;
  }
}

void tUpdateLock::release() noexcept {
  ReleaseMutex(mutex_.get());
}

}  // namespace nCommandLine
