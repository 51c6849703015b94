#ifndef TESTS_LOAD_WATCHDOG_H
#define TESTS_LOAD_WATCHDOG_H

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/load/tprogress.h"

namespace nTests {

// Detects threads that make no progress.
class tWatchdog {
 public:
  using tClock = std::chrono::steady_clock;

  explicit tWatchdog(tClock::duration patience) : patience_(patience) {}

  // `who` names the thread in reports. The progress must outlive the watchdog.
  void watch(std::string who, const tProgress& progress);
  // Checks all threads; call it repeatedly. True if a thread has made no progress for longer than
  // the timeout.
  [[nodiscard]] bool seesAStuckThread(tClock::time_point now = tClock::now());
  // One line for each thread: its step, the time since the step began, and the number of steps.
  [[nodiscard]] std::string report(tClock::time_point now = tClock::now()) const;

 private:
  struct tWatched {
    std::string who;
    const tProgress* progress;
    uint64_t moves;
    tClock::time_point since;
  };

  tClock::duration patience_;
  std::vector<tWatched> watched_;
};

}  // namespace nTests

#endif
