#ifndef TOOLS_QUENRA_UPDATE_IUPDATELOCK_H
#define TOOLS_QUENRA_UPDATE_IUPDATELOCK_H

#include <chrono>
#include <cstdint>
#include <system_error>

namespace nCommandLine {

enum class tLockState : uint8_t {
  acquired,
  abandoned,  // acquired; the process that held the lock ended without releasing it
  busy,
  failed,
};

// The lock that one update of this machine holds at a time, in all sessions and of all users. Acquired and
// released on one thread.
class iUpdateLock {
 public:
  iUpdateLock() = default;
  iUpdateLock(const iUpdateLock&) = delete;
  iUpdateLock& operator=(const iUpdateLock&) = delete;
  virtual ~iUpdateLock() = default;

  // Waits as long at most.
  [[nodiscard]] virtual tLockState acquire(std::chrono::milliseconds timeout) noexcept = 0;
  // The reason of the last `failed`.
  [[nodiscard]] virtual std::error_code failure() const noexcept = 0;
  virtual void release() noexcept = 0;
};

}  // namespace nCommandLine

#endif
