#ifndef SIMULATOR_QUENRA_SIM_INSTALLATION_STEPS_H
#define SIMULATOR_QUENRA_SIM_INSTALLATION_STEPS_H

#include <functional>
#include <vector>

namespace nSimulator {

// Runs every step in order, also after one has thrown. Throws std::runtime_error with the messages of
// all that failed.
void runEveryStep(const std::vector<std::function<void()>>& steps);

}  // namespace nSimulator

#endif
