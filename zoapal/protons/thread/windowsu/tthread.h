#ifndef ZOAPAL_PROTONS_THREAD_WINDOWSU_TTHREAD_H
#define ZOAPAL_PROTONS_THREAD_WINDOWSU_TTHREAD_H

#include <windows.h>

#include "zoapal/protons/handles/windowsu/tuniquehandle.h"
#include "zoapal/protons/status/tstatus.h"

namespace nQUENRA1400::nZOAPAL000 {

// A thread of the library. Failures are located at "thread". Its owner serialises the calls.
class tThread {
 public:
  using tStart = unsigned(__stdcall*)(void* argument);

  // Runs `routine` on a new thread. kInternalError when there is none to be had.
  void start(tStart routine, void* argument, nZOAPALS100::tStatus& status) noexcept;
  [[nodiscard]] bool isStarted() const noexcept { return static_cast<bool>(handle_); }
  [[nodiscard]] DWORD id() const noexcept { return id_; }

  // As for SetThreadPriority; calls nothing when the thread has that priority. kNotReady when the
  // thread is not started, kInternalError when the system refuses.
  void setPriority(int priority, nZOAPALS100::tStatus& status) noexcept;

  // Waits until the thread has ended and forgets it; does nothing when it is not started. A thread
  // that joins itself is let go without waiting, which would never end.
  void join() noexcept;

 private:
  tUniqueThread handle_;
  DWORD id_ = 0;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
