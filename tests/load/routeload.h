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
  uint64_t lives;     // ends when so many routes have lived,
  uint32_t seconds;   // or after this time; 0: without limit
  uint32_t killsPer;  // seconds between two kills, on average; 0: nobody is killed
  uint64_t seed;
};

// Two processes with eight threads each, all with sessions of their own; somebody who takes their
// lines away, and somebody who kills the processes, each of which is started again. What came of it
// goes to standard output, a number a line; progress and complaints go to standard error.
[[nodiscard]] int runRouteLoad(const tRouteLoadPlan& plan);

}  // namespace nTests

#endif
