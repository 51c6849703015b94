// Interfaces of the machine that an update runs on. Tests replace them.
#ifndef TOOLS_QUENRA_UPDATE_UPDATEPORTS_H
#define TOOLS_QUENRA_UPDATE_UPDATEPORTS_H

#include <chrono>
#include <cstdint>
#include <string>
#include <system_error>

namespace nCommandLine {

// The encryption of drive C:, determined by the library's own test.
struct tDriveProtection {
  bool isOn = false;
  int32_t code = 0;   // negative when it cannot be read
  uint32_t line = 0;  // of the step that failed
};

// The program that the library starts to install driver packages. Texts are UTF-8.
struct tDriverStoreTool {
  std::string windowsFolder = "C:\\Windows";  // of the running system
  bool exists = true;
  // Owned by SYSTEM, Administrators, TrustedInstaller, or the owner of the system files.
  bool isSystemOwned = true;
  std::string owner;             // empty if it cannot be read
  std::error_code startFailure;  // why the system cannot start the tool; clear if it can
};

// Properties of the machine that affect an update and that no attribute reports.
class iUpdateFacts {
 public:
  iUpdateFacts() = default;
  iUpdateFacts(const iUpdateFacts&) = delete;
  iUpdateFacts& operator=(const iUpdateFacts&) = delete;
  virtual ~iUpdateFacts() = default;

  [[nodiscard]] virtual tDriveProtection driveProtection() noexcept = 0;
  // Examines the tool without starting it.
  [[nodiscard]] virtual tDriverStoreTool driverStoreTool() = 0;
  // The directory in which an update creates its folder; UTF-8, empty if it cannot be determined.
  [[nodiscard]] virtual std::string temporaryFolder() = 0;
  // Creates a folder there and removes it again. Clear on success.
  [[nodiscard]] virtual std::error_code temporaryFolderFailure() = 0;
};

enum class tLockState : uint8_t {
  acquired,
  abandoned,  // acquired; the process that held the lock ended without releasing it
  busy,
  failed,
};

// The machine-wide lock that admits one update at a time, across all sessions and users. Acquire
// and release it on the same thread.
class iUpdateLock {
 public:
  iUpdateLock() = default;
  iUpdateLock(const iUpdateLock&) = delete;
  iUpdateLock& operator=(const iUpdateLock&) = delete;
  virtual ~iUpdateLock() = default;

  // Waits at most `timeout`.
  [[nodiscard]] virtual tLockState acquire(std::chrono::milliseconds timeout) noexcept = 0;
  // The reason of the last `failed`.
  [[nodiscard]] virtual std::error_code failure() const noexcept = 0;
  virtual void release() noexcept = 0;
};

}  // namespace nCommandLine

#endif
