#ifndef TESTS_LOAD_WATCHDOG_H
#define TESTS_LOAD_WATCHDOG_H

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/load/tprogress.h"

namespace nTests {

// Watches threads that are to go on.
class tWatchdog {
 public:
  using tClock = std::chrono::steady_clock;

  explicit tWatchdog(tClock::duration patience) : patience_(patience) {}

  // `who` names the thread in reports. The progress outlives the watchdog.
  void watch(std::string who, const tProgress& progress);
  // Looks at all threads; to be called again and again. True when one has stood still for longer than
  // the patience.
  [[nodiscard]] bool seesAStuckThread(tClock::time_point now = tClock::now());
  // A line for each thread: what it is doing, since when, and its number of steps.
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
