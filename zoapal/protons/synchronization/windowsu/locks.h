#ifndef ZOAPAL_PROTONS_SYNCHRONIZATION_WINDOWSU_LOCKS_H
#define ZOAPAL_PROTONS_SYNCHRONIZATION_WINDOWSU_LOCKS_H

#include <windows.h>

#include "zoapal/protons/status/tstatus.h"

// For compilers that prove which lock guards which data.
#ifdef __clang__
#define ZOAPAL_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define ZOAPAL_THREAD_ANNOTATION(x)
#endif

namespace nQUENRA1400::nZOAPAL000 {

// A reader/writer lock without a creation step: no operation on it can fail. Not recursive in either
// mode.
class ZOAPAL_THREAD_ANNOTATION(capability("mutex")) tSlimLock {
 public:
  constexpr tSlimLock() noexcept = default;
  tSlimLock(const tSlimLock&) = delete;
  tSlimLock& operator=(const tSlimLock&) = delete;

  void enter() noexcept ZOAPAL_THREAD_ANNOTATION(acquire_capability()) {
    AcquireSRWLockExclusive(&lock_);
  }
  void leave() noexcept ZOAPAL_THREAD_ANNOTATION(release_capability()) {
    ReleaseSRWLockExclusive(&lock_);
  }
  void enterShared() noexcept ZOAPAL_THREAD_ANNOTATION(acquire_shared_capability()) {
    AcquireSRWLockShared(&lock_);
  }
  void leaveShared() noexcept ZOAPAL_THREAD_ANNOTATION(release_shared_capability()) {
    ReleaseSRWLockShared(&lock_);
  }

 private:
  SRWLOCK lock_ = SRWLOCK_INIT;
};

// A critical section, whose creation can fail. Constant-initialised; the owner calls initialise() and
// destroy(), so that no static destructor deletes a lock while the process ends.
class ZOAPAL_THREAD_ANNOTATION(capability("mutex")) tCriticalSection {
 public:
  constexpr tCriticalSection() noexcept = default;
  tCriticalSection(const tCriticalSection&) = delete;
  tCriticalSection& operator=(const tCriticalSection&) = delete;

  // On failure the mapped Windows error, located at "tcriticalsection" line 31.
  void initialise(nZOAPALS100::tStatus& status) noexcept;
  // Does nothing unless initialised.
  void destroy() noexcept;
  [[nodiscard]] bool isInitialised() const noexcept { return initialised_; }

  void enter() noexcept ZOAPAL_THREAD_ANNOTATION(acquire_capability());
  void leave() noexcept ZOAPAL_THREAD_ANNOTATION(release_capability());

 private:
  CRITICAL_SECTION section_{};
  bool initialised_ = false;
};

// Holds a lock of either kind for a scope and excludes every other holder.
template <class Lock>
class ZOAPAL_THREAD_ANNOTATION(scoped_lockable) tGuard {
 public:
  explicit tGuard(Lock& lock) noexcept ZOAPAL_THREAD_ANNOTATION(acquire_capability(lock))
      : lock_(lock) {
    lock_.enter();
  }
  tGuard(const tGuard&) = delete;
  tGuard& operator=(const tGuard&) = delete;
  ~tGuard() ZOAPAL_THREAD_ANNOTATION(release_capability()) { lock_.leave(); }

 private:
  Lock& lock_;
};

// Holds the lock for a scope together with other readers; excludes writers.
class ZOAPAL_THREAD_ANNOTATION(scoped_lockable) tSharedGuard {
 public:
  explicit tSharedGuard(tSlimLock& lock) noexcept
      ZOAPAL_THREAD_ANNOTATION(acquire_shared_capability(lock))
      : lock_(lock) {
    lock_.enterShared();
  }
  tSharedGuard(const tSharedGuard&) = delete;
  tSharedGuard& operator=(const tSharedGuard&) = delete;
  // A scoped capability's destructor releases in the mode in which its constructor acquired.
  ~tSharedGuard() ZOAPAL_THREAD_ANNOTATION(release_capability()) { lock_.leaveShared(); }

 private:
  tSlimLock& lock_;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
