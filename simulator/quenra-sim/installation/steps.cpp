#include "simulator/quenra-sim/installation/steps.h"

#include <stdexcept>
#include <string>

namespace nSimulator {

void runEveryStep(const std::vector<std::function<void()>>& steps) {
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
