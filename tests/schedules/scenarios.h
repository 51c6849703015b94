// Clients of the library whose threads meet, for the exploration of their schedules.
#ifndef TESTS_SCHEDULES_SCENARIOS_H
#define TESTS_SCHEDULES_SCENARIOS_H

#include <span>

#include "tests/schedules/exploration.h"

namespace nTests {

struct tScheduleScenario {
  const char* name;
  const char* summary;
  // Runs inside the scheduler, on the thread "main". Ends the program when a promise is broken.
  void (*run)();
  tBound bound;  // of the exploration that belongs to every test run
};

[[nodiscard]] std::span<const tScheduleScenario> scheduleScenarios();

// Prepares the fake Windows for a run.
void prepareScenario();
// Ends the program if the run left something behind.
void checkScenario();

}  // namespace nTests

#endif
