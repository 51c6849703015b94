// The load tests of quenra_load.
#ifndef TESTS_LOAD_LOADS_H
#define TESTS_LOAD_LOADS_H

#include <windows.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <string>
#include <system_error>

#include "tests/load/loadthread.h"
#include "tests/load/routeclient.h"

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

inline constexpr size_t kWorkers = 2;
inline constexpr size_t kThreadsPerWorker = 8;

struct tThreadLoad {
  tProgress progress;
  tRouteTally tally;
};

// State shared by the processes of a load. It survives the processes that are killed.
struct tLoad {
  std::atomic<uint32_t> isEndRequested;
  std::atomic<uint32_t> hasFailed;
  std::array<char, 1024> failure;  // the first failure
  std::array<std::array<tThreadLoad, kThreadsPerWorker>, kWorkers> workers;
};

// Records the first failure; later ones are its consequences. Requests the end of the load.
inline void recordFailure(tLoad& load, const std::string& text) noexcept {
  if (load.hasFailed.exchange(1) == 0) {
    const size_t size = std::min(text.size(), load.failure.size() - 1);
    std::copy_n(text.begin(), size, load.failure.begin());
  }
  load.isEndRequested = 1;
}

// Named shared memory that contains a load.
class tSharedLoad {
 public:
  // Creates the memory or opens it. It exists until its last user closes it.
  explicit tSharedLoad(const std::string& name)
      : mapping_(CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(tLoad),
                                    name.c_str())),
        load_(static_cast<tLoad*>(MapViewOfFile(mapping_, FILE_MAP_ALL_ACCESS, 0, 0, 0))) {
    if (load_ == nullptr) {
      throw std::system_error(static_cast<int>(GetLastError()), std::system_category(),
                              "memory shared as " + name);
    }
  }
  tSharedLoad(const tSharedLoad&) = delete;
  tSharedLoad& operator=(const tSharedLoad&) = delete;
  ~tSharedLoad() {
    UnmapViewOfFile(load_);
    CloseHandle(mapping_);
  }

  [[nodiscard]] tLoad& load() const noexcept { return *load_; }

 private:
  HANDLE mapping_;
  tLoad* load_;
};

}  // namespace nTests

#endif
