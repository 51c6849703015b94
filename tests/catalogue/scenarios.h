// The scenarios of the catalogue: lives of the library as its clients lead them, through the exports.
#ifndef TESTS_CATALOGUE_SCENARIOS_H
#define TESTS_CATALOGUE_SCENARIOS_H

#include <cstdint>
#include <set>
#include <string_view>

#include "tests/catalogue/trun.h"

namespace nTests {

struct tScenario {
  std::string_view name;
  // The machine as the scenario needs it.
  void (*prepare)();
  void (*run)(tRun& run);
  // What must be true after each run, whatever went wrong in it.
  void (*check)(const tRun& run);
  // What a step that did not work may report when memory is short.
  std::set<int32_t> shortMemory;
};

// The step in which a demotion is to be told, and its code when nobody is.
inline constexpr const char* kDemotionStep = "demotion is told";
inline constexpr int32_t kNotTold = 1;

[[nodiscard]] const std::vector<tScenario>& scenarios();

}  // namespace nTests

#endif
