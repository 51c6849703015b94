// For commands that wait: the elapsed time, and the request to stop waiting.
#ifndef TOOLS_QUENRA_OUTPUT_WAITING_H
#define TOOLS_QUENRA_OUTPUT_WAITING_H

#include <chrono>
#include <string>

namespace nCommandLine {

// A request to end the program: Ctrl-C, or a closed console.
class iInterruption {
 public:
  iInterruption() = default;
  iInterruption(const iInterruption&) = delete;
  iInterruption& operator=(const iInterruption&) = delete;
  virtual ~iInterruption() = default;

  // From this call on, an interruption no longer ends the program; the program polls hasOccurred.
  virtual void intercept() noexcept = 0;
  [[nodiscard]] virtual bool hasOccurred() noexcept = 0;
};

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

// "0.4 s", "125.0 s"
[[nodiscard]] inline std::string elapsedText(std::chrono::milliseconds elapsed) {
  const auto tenths = elapsed / std::chrono::milliseconds(100);
  return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " s";
}

}  // namespace nCommandLine

#endif
