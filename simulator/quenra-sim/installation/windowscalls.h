#ifndef SIMULATOR_QUENRA_SIM_INSTALLATION_WINDOWSCALLS_H
#define SIMULATOR_QUENRA_SIM_INSTALLATION_WINDOWSCALLS_H

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

}  // namespace nSimulator

#endif
