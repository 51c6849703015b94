#ifndef TOOLS_QUENRA_OUTPUT_TSTOPWATCH_H
#define TOOLS_QUENRA_OUTPUT_TSTOPWATCH_H

#include <chrono>

namespace nCommandLine {

// Measures from its creation.
class tStopwatch {
 public:
  [[nodiscard]] std::chrono::milliseconds elapsed() const noexcept {
    return std::chrono::duration_cast<std::chrono::milliseconds>(tClock::now() - start_);
  }

 private:
  using tClock = std::chrono::steady_clock;

  tClock::time_point start_ = tClock::now();
};

}  // namespace nCommandLine

#endif
