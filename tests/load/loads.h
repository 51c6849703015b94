// The load tests of quenra_load.
#ifndef TESTS_LOAD_LOADS_H
#define TESTS_LOAD_LOADS_H

#include <cstdint>
#include <string>

namespace nTests {

// Exit codes of the load programs.
enum tLoadOutcome : int {
  kPassed = 0,
  kContractViolated = 1,
  kThreadStuck = 3,
};

struct tRouteLoadPlan {
  uint64_t routes;        // ends after this number of routes,
  uint32_t seconds;       // or after this time; 0: without limit
  uint32_t killInterval;  // average seconds between two kills; 0: no kills
  uint64_t seed;
};

// Runs two processes of eight threads with a session each, while one thread demotes their routes
// and another kills and restarts the processes. Prints the results to standard output, one number
// per line, and progress and failures to standard error.
[[nodiscard]] int runRouteLoad(const tRouteLoadPlan& plan);

// A worker process: threads with a session each, which use one route after another until the load
// ends. Returns the exit code of the process.
[[nodiscard]] int runRouteWorker(const std::string& loadName, uint32_t worker, uint64_t seed);

// A client that runs after all others have ended: reserves all lines simultaneously, each from
// another terminal, and releases them. Returns the exit code of the process.
[[nodiscard]] int reserveEveryLine();

struct tSoakPlan {
  uint32_t seconds;
  uint64_t seed;
};

// Runs eight threads that call all functions, in rounds: first with faults injected into the
// driver, then without, when every contract must hold. Measures memory and handles between the
// rounds, while no thread runs. Returns a tLoadOutcome.
[[nodiscard]] int runSoak(const tSoakPlan& plan);

}  // namespace nTests

#endif
