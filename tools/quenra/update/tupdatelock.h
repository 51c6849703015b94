#ifndef TOOLS_QUENRA_UPDATE_TUPDATELOCK_H
#define TOOLS_QUENRA_UPDATE_TUPDATELOCK_H

#include "tools/quenra/update/iupdatelock.h"
#include "zoapal/protons/handles/windowsu/tuniquehandle.h"

namespace nCommandLine {

// A mutex in the global namespace, because the sessions of all users share one controller. It has
// the default security of its creator, so that accounts other than administrators cannot hold it.
class tUpdateLock final : public iUpdateLock {
 public:
  [[nodiscard]] tLockState acquire(std::chrono::milliseconds timeout) noexcept override;
  [[nodiscard]] std::error_code failure() const noexcept override { return failure_; }
  void release() noexcept override;

 private:
  nQUENRA1400::nZOAPAL000::tUniqueHandle<nQUENRA1400::nZOAPAL000::tObjectPolicy> mutex_;
  std::error_code failure_;
};

}  // namespace nCommandLine

#endif
