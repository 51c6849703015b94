#ifndef SIMULATOR_QUENRA_SIM_INSTALLATION_READINESS_H
#define SIMULATOR_QUENRA_SIM_INSTALLATION_READINESS_H

#include <chrono>

namespace nSimulator {

// Waits until the simulated machine can be reached; throws tControlError when the timeout has
// elapsed.
void waitUntilReady(std::chrono::milliseconds timeout);

}  // namespace nSimulator

#endif
