#ifndef TESTS_LOAD_BALANCE_H
#define TESTS_LOAD_BALANCE_H

#include <string>

#include "simulator/control/tsimulatedmachine.h"

namespace nTests {

// The driver's leaks after all clients have ended: one line for each pair of counts that differ,
// empty if all are balanced. Waits until the driver has closed the files of killed clients, with a
// timeout.
[[nodiscard]] std::string imbalanceOf(nSimulator::tSimulatedMachine& machine);

}  // namespace nTests

#endif
