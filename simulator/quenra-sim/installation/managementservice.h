#ifndef SIMULATOR_QUENRA_SIM_INSTALLATION_MANAGEMENTSERVICE_H
#define SIMULATOR_QUENRA_SIM_INSTALLATION_MANAGEMENTSERVICE_H

namespace nSimulator {

// Puts the machine's management service in the place of the system's, or the system's back. Both
// throw std::system_error; done twice they change nothing.
void installManagementService();
void removeManagementService();

}  // namespace nSimulator

#endif
