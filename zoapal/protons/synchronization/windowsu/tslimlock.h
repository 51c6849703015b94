#ifndef ZOAPAL_PROTONS_SYNCHRONIZATION_WINDOWSU_TSLIMLOCK_H
#define ZOAPAL_PROTONS_SYNCHRONIZATION_WINDOWSU_TSLIMLOCK_H

#include <windows.h>

#include "zoapal/protons/synchronization/windowsu/threadannotation.h"

namespace nQUENRA1400::nZOAPAL000 {

// A lock that needs neither making nor ending, so that nothing about it can fail. Not recursive.
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

 private:
  SRWLOCK lock_ = SRWLOCK_INIT;
};

// Holds the lock for a scope.
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

}  // namespace nQUENRA1400::nZOAPAL000

#endif
