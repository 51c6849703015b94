#ifndef SIMULATOR_QUENRA_SIM_INSTALLATION_STEPS_H
#define SIMULATOR_QUENRA_SIM_INSTALLATION_STEPS_H

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace nSimulator {

// Runs all steps in order, even after one has thrown. Throws std::runtime_error with the messages
// of all failed steps.
inline void runEveryStep(const std::vector<std::function<void()>>& steps) {
  std::string failures;
  for (const auto& step : steps) {
    try {
      step();
    } catch (const std::exception& failure) {
      failures.append(failures.empty() ? "" : "; ").append(failure.what());
    }
  }
  if (!failures.empty()) {
    throw std::runtime_error(failures);
  }
}

}  // namespace nSimulator

#endif
