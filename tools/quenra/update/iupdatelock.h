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

// The machine-wide lock that admits one update at a time, across all sessions and users. Acquire
// and release it on the same thread.
class iUpdateLock {
 public:
  iUpdateLock() = default;
  iUpdateLock(const iUpdateLock&) = delete;
  iUpdateLock& operator=(const iUpdateLock&) = delete;
  virtual ~iUpdateLock() = default;

  // Waits at most `timeout`.
  [[nodiscard]] virtual tLockState acquire(std::chrono::milliseconds timeout) noexcept = 0;
  // The reason of the last `failed`.
  [[nodiscard]] virtual std::error_code failure() const noexcept = 0;
  virtual void release() noexcept = 0;
};

}  // namespace nCommandLine

#endif
