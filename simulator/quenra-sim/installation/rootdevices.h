#ifndef SIMULATOR_QUENRA_SIM_INSTALLATION_ROOTDEVICES_H
#define SIMULATOR_QUENRA_SIM_INSTALLATION_ROOTDEVICES_H

namespace nSimulator {

// The devices of the simulated machine. No bus enumerates them; they are created under the root of
// the device tree. Both functions throw std::system_error.
void createRootDevices();
void removeRootDevices();

}  // namespace nSimulator

#endif
