#ifndef TOOLS_QUENRA_UPDATE_IUPDATEFACTS_H
#define TOOLS_QUENRA_UPDATE_IUPDATEFACTS_H

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

}  // namespace nCommandLine

#endif
