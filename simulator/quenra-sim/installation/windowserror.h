#ifndef SIMULATOR_QUENRA_SIM_INSTALLATION_WINDOWSERROR_H
#define SIMULATOR_QUENRA_SIM_INSTALLATION_WINDOWSERROR_H

#include <string>

namespace nSimulator {

// Throws std::system_error with the thread's last error, unless `done`.
void require(bool done, const std::string& what);

}  // namespace nSimulator

#endif
