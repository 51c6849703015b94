#ifndef SIMULATOR_QUENRA_SIM_INSTALLATION_INSTALLATION_H
#define SIMULATOR_QUENRA_SIM_INSTALLATION_INSTALLATION_H

namespace nSimulator {

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
