#ifndef SIMULATOR_QUENRA_SIM_INSTALLATION_OWNFOLDER_H
#define SIMULATOR_QUENRA_SIM_INSTALLATION_OWNFOLDER_H

#include <string>

namespace nSimulator {

// The folder of this program, with a backslash; it also contains the files to install.
[[nodiscard]] std::string ownFolder();

}  // namespace nSimulator

#endif
