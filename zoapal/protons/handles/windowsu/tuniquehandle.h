#ifndef ZOAPAL_PROTONS_HANDLES_WINDOWSU_TUNIQUEHANDLE_H
#define ZOAPAL_PROTONS_HANDLES_WINDOWSU_TUNIQUEHANDLE_H

#include <windows.h>

#include <utility>

namespace nQUENRA1400::nZOAPAL000 {

// Owns a handle. Policy defines the handle's type, its invalid value and the function that closes it.
// Closing preserves the thread's last error, so that a failure can be reported after the clean-up.
template <class Policy>
class tUniqueHandle {
 public:
  using tHandle = typename Policy::tHandle;

  tUniqueHandle() noexcept = default;
  explicit tUniqueHandle(tHandle handle) noexcept : handle_(handle) {}
  tUniqueHandle(tUniqueHandle&& other) noexcept
      : handle_(std::exchange(other.handle_, Policy::none())) {}
  tUniqueHandle& operator=(tUniqueHandle&& other) noexcept {
    reset(std::exchange(other.handle_, Policy::none()));
    return *this;
  }
  ~tUniqueHandle() { reset(); }

  [[nodiscard]] tHandle get() const noexcept { return handle_; }
  explicit operator bool() const noexcept { return handle_ != Policy::none(); }

  void reset(tHandle handle = Policy::none()) noexcept {
    const tHandle old = std::exchange(handle_, handle);
    if (old != Policy::none() && old != handle) {
      const DWORD lastError = GetLastError();
      Policy::close(old);
      SetLastError(lastError);
    }
  }

 private:
  tHandle handle_ = Policy::none();
};

// Events, threads and completion ports.
struct tObjectPolicy {
  using tHandle = HANDLE;
  static tHandle none() noexcept { return nullptr; }
  static void close(tHandle handle) noexcept { CloseHandle(handle); }
};

struct tFilePolicy : tObjectPolicy {
  static tHandle none() noexcept { return INVALID_HANDLE_VALUE; }
};

using tUniqueEvent = tUniqueHandle<tObjectPolicy>;
using tUniqueThread = tUniqueHandle<tObjectPolicy>;
using tUniquePort = tUniqueHandle<tObjectPolicy>;
using tUniqueFile = tUniqueHandle<tFilePolicy>;

}  // namespace nQUENRA1400::nZOAPAL000

#endif
