#ifndef ZOAPAL_PROTONS_THREAD_WINDOWSU_TTHREAD_H
#define ZOAPAL_PROTONS_THREAD_WINDOWSU_TTHREAD_H

#include <windows.h>

#include "zoapal/protons/handles/windowsu/tuniquehandle.h"
#include "zoapal/protons/status/tstatus.h"
#include "zoapal/protons/thread/windowsu/startthread.h"

namespace nQUENRA1400::nZOAPAL000 {

// A thread of the library. Failures are located at "thread". Its owner serialises the calls.
class tThread {
 public:
  // Runs the routine on a new thread. kInternalError when none can be started.
  template <tThreadRoutine kRoutine>
  void start(void* argument, nZOAPALS100::tStatus& status) noexcept {
    if (!status.isError()) {
      handle_ = startThread<kRoutine>(argument, id_);
      checkStarted(status);
    }
  }
  [[nodiscard]] bool isStarted() const noexcept { return static_cast<bool>(handle_); }
  [[nodiscard]] DWORD id() const noexcept { return id_; }
  // True on the thread itself.
  [[nodiscard]] bool isCurrent() const noexcept {
    return isStarted() && GetCurrentThreadId() == id_;
  }

  // As SetThreadPriority; makes no call when the thread has that priority. kNotReady when the thread
  // is not started, kInternalError when Windows refuses.
  void setPriority(int priority, nZOAPALS100::tStatus& status) noexcept;

  // Waits until the thread has ended and releases it; does nothing when it is not started. A thread
  // that joins itself is released without waiting, which would never end.
  void join() noexcept;

 private:
  void checkStarted(nZOAPALS100::tStatus& status) const noexcept;

  tUniqueThread handle_;
  DWORD id_ = 0;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
