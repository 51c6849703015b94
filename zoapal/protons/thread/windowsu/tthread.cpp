#include "zoapal/protons/thread/windowsu/tthread.h"

#include "zoapal/protons/synchronization/windowsu/wait.h"

namespace nQUENRA1400::nZOAPAL000 {
namespace {

using nZOAPALS100::tSourceLocation;
using nZOAPALS100::tStatus;

constexpr tSourceLocation kStart{"thread", 471};
constexpr tSourceLocation kNotStarted{"thread", 859};
constexpr tSourceLocation kSetPriority{"thread", 866};

}  // namespace

void tThread::checkStarted(tStatus& status) const noexcept {
  if (!isStarted()) {
    mergeStatus(status, nZOAPALS100::kInternalError, kStart);
  }
}

void tThread::setPriority(int priority, tStatus& status) noexcept {
  if (status.isError()) {
    return;
  }
  if (!isStarted()) {
    mergeStatus(status, nZOAPALS100::kNotReady, kNotStarted);
  } else if (GetThreadPriority(handle_.get()) != priority &&
             !SetThreadPriority(handle_.get(), priority)) {
    mergeStatus(status, nZOAPALS100::kInternalError, kSetPriority);
  }
}

void tThread::join() noexcept {
  if (isStarted() && !isCurrent()) {
    waitFor(handle_.get());
  }
  handle_.reset();
  id_ = 0;
}

}  // namespace nQUENRA1400::nZOAPAL000
