#ifndef SIMULATOR_QUENRA_SIM_INSTALLATION_SERVICES_H
#define SIMULATOR_QUENRA_SIM_INSTALLATION_SERVICES_H

namespace nSimulator {

// The machine's replacements of operating system services. The functions that change the system
// throw std::system_error.

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
