#ifndef SIMULATOR_QUENRA_SIM_INSTALLATION_DRIVERSERVICE_H
#define SIMULATOR_QUENRA_SIM_INSTALLATION_DRIVERSERVICE_H

namespace nSimulator {

// Installs the driver on the devices from the files beside this program. Throws std::system_error.
void installDriver();

// Unloads the driver and deletes its service. Does nothing if it is not installed.
void removeDriverService();

}  // namespace nSimulator

#endif
