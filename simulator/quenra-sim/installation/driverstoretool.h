#ifndef SIMULATOR_QUENRA_SIM_INSTALLATION_DRIVERSTORETOOL_H
#define SIMULATOR_QUENRA_SIM_INSTALLATION_DRIVERSTORETOOL_H

namespace nSimulator {

enum class tDriverStoreTool {
  missing,
  broken,  // a file that is not a program
  working,
};

// Replaces the operating system's driver-store tool with the machine's, in this state. Throws
// std::system_error.
void putDriverStoreTool(tDriverStoreTool state);
[[nodiscard]] tDriverStoreTool driverStoreTool();

}  // namespace nSimulator

#endif
