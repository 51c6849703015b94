#ifndef TESTS_LOAD_SOAK_H
#define TESTS_LOAD_SOAK_H

#include <cstdint>

namespace nTests {

struct tSoakPlan {
  uint32_t seconds;
  uint64_t seed;
};

// Eight threads of everything there is to call, for as long as one likes: in turn with a driver that
// refuses, fails and lies, and with one that behaves, where every promise is kept again. In the quiet
// moments between, memory and handles are measured. The exit code: tLoadOutcome.
[[nodiscard]] int runSoak(const tSoakPlan& plan);

}  // namespace nTests

#endif
