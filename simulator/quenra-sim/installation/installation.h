#ifndef SIMULATOR_QUENRA_SIM_INSTALLATION_INSTALLATION_H
#define SIMULATOR_QUENRA_SIM_INSTALLATION_INSTALLATION_H

#include <windows.h>

#include <array>
#include <string>
#include <system_error>

namespace nSimulator {

// Throws std::system_error with the thread's last error, unless `succeeded`.
inline void require(bool succeeded, const std::string& failure) {
  if (!succeeded) {
    const auto error = static_cast<int>(GetLastError());
    throw std::system_error(error, std::system_category(),
                            failure + " (Windows error " + std::to_string(error) + ")");
  }
}

// The folder of this program, with a backslash; it also contains the files to install.
[[nodiscard]] inline std::string ownFolder() {
  std::array<char, MAX_PATH> path{};
  const DWORD length = GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size()));
  require(length != 0 && length < path.size(), "cannot determine the folder of this program");
  const std::string program(path.data());
  return program.substr(0, program.find_last_of('\\') + 1);
}

// The parts of an installation. Every function that changes the system throws std::system_error.

// driver.cpp: the devices of the simulated machine and their driver. No bus enumerates the devices;
// they are created under the root of the device tree.
void createRootDevices();
void removeRootDevices();
// Installs the driver on the devices from the files beside this program.
void installDriver();
// Unloads the driver and deletes its service. Does nothing if it is not installed.
void removeDriverService();

// services.cpp: the machine's replacements of operating system services.

// Replaces the system's management service with the machine's, or restores the system's. A second
// call has no effect.
void installManagementService();
void removeManagementService();

enum class tDriverStoreTool {
  missing,
  broken,  // a file that is not a program
  working,
};

// Replaces the operating system's driver-store tool with the machine's, in this state.
void installDriverStoreTool(tDriverStoreTool state);
[[nodiscard]] tDriverStoreTool driverStoreTool();

}  // namespace nSimulator

#endif
