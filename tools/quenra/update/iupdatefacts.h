#ifndef TOOLS_QUENRA_UPDATE_IUPDATEFACTS_H
#define TOOLS_QUENRA_UPDATE_IUPDATEFACTS_H

#include <cstdint>
#include <string>
#include <system_error>

namespace nCommandLine {

// The library's own reading of the encryption of drive C:.
struct tDriveProtection {
  bool isOn = false;
  int32_t code = 0;   // negative when it cannot be read
  uint32_t line = 0;  // of the step that failed
};

// The program that the library starts to install driver packages. Texts are UTF-8.
struct tDriverStoreTool {
  std::string windowsFolder = "C:\\Windows";  // of the running system
  bool exists = true;
  // By SYSTEM, Administrators, TrustedInstaller, or the owner of the system's own files.
  bool isSystemOwned = true;
  std::string owner;             // empty where it cannot be read
  std::error_code startFailure;  // why the system does not start the tool; clear if it does
};

// Facts of the machine that decide about an update and that no attribute reports.
class iUpdateFacts {
 public:
  iUpdateFacts() = default;
  iUpdateFacts(const iUpdateFacts&) = delete;
  iUpdateFacts& operator=(const iUpdateFacts&) = delete;
  virtual ~iUpdateFacts() = default;

  [[nodiscard]] virtual tDriveProtection driveProtection() noexcept = 0;
  // Starts nothing.
  [[nodiscard]] virtual tDriverStoreTool driverStoreTool() = 0;
  // The directory in which an update makes its folder; UTF-8, empty where it cannot be read.
  [[nodiscard]] virtual std::string temporaryFolder() = 0;
  // Makes a folder there and removes it again; clear if that succeeds.
  [[nodiscard]] virtual std::error_code temporaryFolderFailure() = 0;
};

}  // namespace nCommandLine

#endif
