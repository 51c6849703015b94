#ifndef SIMULATOR_QUENRA_SIM_INSTALLATION_DRIVER_H
#define SIMULATOR_QUENRA_SIM_INSTALLATION_DRIVER_H

namespace nSimulator {

// The devices of the simulated machine and their driver. No bus enumerates the devices; they are
// created under the root of the device tree. All functions throw std::system_error.

void createRootDevices();
void removeRootDevices();

// Installs the driver on the devices from the files beside this program.
void installDriver();
// Unloads the driver and deletes its service. Does nothing if it is not installed.
void removeDriverService();

}  // namespace nSimulator

#endif
