#ifndef SIMULATOR_QUENRA_SIM_INSTALLATION_STEPS_H
#define SIMULATOR_QUENRA_SIM_INSTALLATION_STEPS_H

#include <functional>
#include <vector>

namespace nSimulator {

// Runs all steps in order, even after one has thrown. Throws std::runtime_error with the messages
// of all failed steps.
void runEveryStep(const std::vector<std::function<void()>>& steps);

}  // namespace nSimulator

#endif
