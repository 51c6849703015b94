#ifndef SIMULATOR_QUENRA_SIM_INSTALLATION_READINESS_H
#define SIMULATOR_QUENRA_SIM_INSTALLATION_READINESS_H

#include <chrono>

namespace nSimulator {

// Returns when the simulated machine can be reached; throws tControlError when it cannot within the
// time.
void waitUntilReady(std::chrono::milliseconds timeout);

}  // namespace nSimulator

#endif
