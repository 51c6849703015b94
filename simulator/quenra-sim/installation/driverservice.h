#ifndef SIMULATOR_QUENRA_SIM_INSTALLATION_DRIVERSERVICE_H
#define SIMULATOR_QUENRA_SIM_INSTALLATION_DRIVERSERVICE_H

namespace nSimulator {

// Gives the devices their driver, from the files beside this program. Throws std::system_error.
void installDriver();

// Unloads the driver and forgets its service. Nothing happens when there is none.
void removeDriverService();

}  // namespace nSimulator

#endif
