#ifndef ZOAPAL_PROTONS_SYNCHRONIZATION_WINDOWSU_TCRITICALSECTION_H
#define ZOAPAL_PROTONS_SYNCHRONIZATION_WINDOWSU_TCRITICALSECTION_H

#include <windows.h>

#include "zoapal/protons/status/tstatus.h"
#include "zoapal/protons/synchronization/windowsu/threadannotation.h"

namespace nQUENRA1400::nZOAPAL000 {

// A critical section that may fail to come to life. It is constant-initialised, made by
// initialise() and ended by destroy(); both are the owner's duty, so that a lock in static storage
// is not destroyed by accident while other threads are being ended.
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

// Holds the lock for a scope.
class ZOAPAL_THREAD_ANNOTATION(scoped_lockable) tLock {
 public:
  explicit tLock(tCriticalSection& section) noexcept
      ZOAPAL_THREAD_ANNOTATION(acquire_capability(section))
      : section_(section) {
    section_.enter();
  }
  tLock(const tLock&) = delete;
  tLock& operator=(const tLock&) = delete;
  ~tLock() ZOAPAL_THREAD_ANNOTATION(release_capability()) { section_.leave(); }

 private:
  tCriticalSection& section_;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
