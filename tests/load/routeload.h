#ifndef TESTS_LOAD_ROUTELOAD_H
#define TESTS_LOAD_ROUTELOAD_H

#include <cstdint>

namespace nTests {

// Exit codes of the load programs.
enum tLoadOutcome : int {
  kEverythingHeld = 0,
  kPromiseBroken = 1,
  kThreadStuck = 3,
};

struct tRouteLoadPlan {
  uint64_t lives;     // ends after this number of routes,
  uint32_t seconds;   // or after this time; 0: without limit
  uint32_t killsPer;  // average seconds between two kills; 0: no kills
  uint64_t seed;
};

// Runs two processes of eight threads with a session each, while one thread demotes their routes
// and another kills and restarts the processes. Prints the results to standard output, one number
// per line, and progress and failures to standard error.
[[nodiscard]] int runRouteLoad(const tRouteLoadPlan& plan);

}  // namespace nTests

#endif
