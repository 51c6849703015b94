#ifndef ZOAPAL_PROTONS_THREAD_WINDOWSU_TTHREAD_H
#define ZOAPAL_PROTONS_THREAD_WINDOWSU_TTHREAD_H

#include <windows.h>

#include "zoapal/protons/handles/windowsu/tuniquehandle.h"
#include "zoapal/protons/status/tstatus.h"
#include "zoapal/protons/trace/assertion.h"

namespace nQUENRA1400::nZOAPAL000 {

using tThreadRoutine = void (*)(void* argument) noexcept;
using tThreadMain = unsigned(__stdcall*)(void* argument);

// Releases the reference to the module and ends the calling thread, in one call: the code after a
// plain FreeLibrary might no longer be mapped. Not noexcept, so that an implementation which unwinds
// the stack can pass through the thread's main function.
[[noreturn]] void releaseModuleAndEndThread();

// Takes a reference to the module that contains the library and starts a thread, which releases it.
// On failure the handle is empty, and the last error may give the reason.
[[nodiscard]] tUniqueThread startThreadInModule(tThreadMain main, void* argument,
                                                DWORD& id) noexcept;

template <tThreadRoutine kRoutine>
unsigned __stdcall runInModule(void* argument) {
  kRoutine(argument);
  releaseModuleAndEndThread();
}

// Starts a thread that holds a reference to the library's module until it ends: unloading the library
// while the thread runs does not unmap the thread's code.
template <tThreadRoutine kRoutine>
[[nodiscard]] tUniqueThread startThread(void* argument, DWORD& id) noexcept {
  return startThreadInModule(&runInModule<kRoutine>, argument, id);
}

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

// Names a thread of this process "quenra" in a debugger, if one is present. Has no other effect.
void nameThreadForDebuggers(DWORD threadId) noexcept;

// ---- Waiting ----

// Wait without limit for an end that must come before memory is freed or used again. A wait that
// fails is repeated, because continuing without it would be worse; after kMaxAttempts failures in a
// row the process ends with an assertion.
void waitFor(HANDLE object) noexcept;
// Returns when at least one of the objects is signalled.
void waitForEither(HANDLE first, HANDLE second) noexcept;

// Failing attempts are a millisecond apart.
inline constexpr int kMaxAttempts = 1000;

// Repeats `attempt` until it returns true, at most kMaxAttempts times, then asserts at this location.
template <class Attempt>
void repeatUntilDone(const nZOAPALS100::tSourceLocation& location, const char* assertion,
                     Attempt attempt) noexcept {
  constexpr DWORD kPauseMilliseconds = 1;
  for (int i = 0; i < kMaxAttempts; ++i) {
    if (attempt()) {
      return;
    }
    Sleep(kPauseMilliseconds);
  }
  assertionFailed(location, assertion);  // GCOVR_EXCL_LINE: ends the process, and with it the count
}

}  // namespace nQUENRA1400::nZOAPAL000

#endif
