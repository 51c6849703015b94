#include "simulator/quenra-sim/installation/windowserror.h"

#include <windows.h>

#include <system_error>

namespace nSimulator {

void require(bool done, const std::string& what) {
  if (!done) {
    const auto error = static_cast<int>(GetLastError());
    throw std::system_error(error, std::system_category(),
                            what + " (Windows error " + std::to_string(error) + ")");
  }
}

}  // namespace nSimulator
