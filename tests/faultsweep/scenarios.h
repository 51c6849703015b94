// The scenarios of the fault sweep: typical uses of the library through its exports.
#ifndef TESTS_FAULTSWEEP_SCENARIOS_H
#define TESTS_FAULTSWEEP_SCENARIOS_H

#include <cstdint>
#include <set>
#include <string_view>

#include "tests/faultsweep/trun.h"

namespace nTests {

struct tScenario {
  std::string_view name;
  // Prepares the machine for the scenario.
  void (*prepare)();
  void (*run)(tRun& run);
  // Checks the invariants that must hold after each run, with or without a fault.
  void (*check)(const tRun& run);
  // The codes that a failed step may report when out of memory.
  std::set<int32_t> shortMemory;
};

// The step in which a demotion must be delivered, and its code if it is not.
inline constexpr const char* kDemotionStep = "demotion is told";
inline constexpr int32_t kNotTold = 1;

[[nodiscard]] const std::vector<tScenario>& scenarios();

}  // namespace nTests

#endif
