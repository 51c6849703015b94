#ifndef SIMULATOR_QUENRA_SIM_INSTALLATION_MANAGEMENTSERVICE_H
#define SIMULATOR_QUENRA_SIM_INSTALLATION_MANAGEMENTSERVICE_H

namespace nSimulator {

// Replaces the system's management service with the machine's, or restores the system's. Both throw
// std::system_error; a second call has no effect.
void installManagementService();
void removeManagementService();

}  // namespace nSimulator

#endif
