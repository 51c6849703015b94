#ifndef TOOLS_QUENRA_UPDATE_UPDATEONWINDOWS_H
#define TOOLS_QUENRA_UPDATE_UPDATEONWINDOWS_H

#include "tools/quenra/update/updateports.h"
#include "zoapal/protons/handles/windowsu/tuniquehandle.h"

namespace nCommandLine {

// Examines the machine with the same system calls as the library.
class tUpdateFacts final : public iUpdateFacts {
 public:
  [[nodiscard]] tDriveProtection driveProtection() noexcept override;
  [[nodiscard]] tDriverStoreTool driverStoreTool() override;
  [[nodiscard]] std::string temporaryFolder() override;
  [[nodiscard]] std::error_code temporaryFolderFailure() override;
};

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
