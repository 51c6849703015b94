#ifndef ZOAPAL_PROTONS_SYNCHRONIZATION_WINDOWSU_TSLIMLOCK_H
#define ZOAPAL_PROTONS_SYNCHRONIZATION_WINDOWSU_TSLIMLOCK_H

#include <windows.h>

#include "zoapal/protons/synchronization/windowsu/threadannotation.h"

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

// Holds the lock for a scope and excludes every other holder.
class ZOAPAL_THREAD_ANNOTATION(scoped_lockable) tSlimGuard {
 public:
  explicit tSlimGuard(tSlimLock& lock) noexcept ZOAPAL_THREAD_ANNOTATION(acquire_capability(lock))
      : lock_(lock) {
    lock_.enter();
  }
  tSlimGuard(const tSlimGuard&) = delete;
  tSlimGuard& operator=(const tSlimGuard&) = delete;
  ~tSlimGuard() ZOAPAL_THREAD_ANNOTATION(release_capability()) { lock_.leave(); }

 private:
  tSlimLock& lock_;
};

// Holds the lock for a scope together with other readers; excludes writers.
class ZOAPAL_THREAD_ANNOTATION(scoped_lockable) tSharedSlimGuard {
 public:
  explicit tSharedSlimGuard(tSlimLock& lock) noexcept
      ZOAPAL_THREAD_ANNOTATION(acquire_shared_capability(lock))
      : lock_(lock) {
    lock_.enterShared();
  }
  tSharedSlimGuard(const tSharedSlimGuard&) = delete;
  tSharedSlimGuard& operator=(const tSharedSlimGuard&) = delete;
  // A scoped capability's destructor releases in the mode in which its constructor acquired.
  ~tSharedSlimGuard() ZOAPAL_THREAD_ANNOTATION(release_capability()) { lock_.leaveShared(); }

 private:
  tSlimLock& lock_;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
