#include "simulator/quenra-sim/installation/ownfolder.h"

#include <windows.h>

#include <array>

#include "simulator/quenra-sim/installation/windowserror.h"

namespace nSimulator {

std::string ownFolder() {
  std::array<char, MAX_PATH> path{};
  const DWORD length = GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size()));
  require(length != 0 && length < path.size(), "the program's own folder cannot be told");
  const std::string program(path.data());
  return program.substr(0, program.find_last_of('\\') + 1);
}

}  // namespace nSimulator
