#ifndef TESTS_LOAD_SOAK_H
#define TESTS_LOAD_SOAK_H

#include <cstdint>

namespace nTests {

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
