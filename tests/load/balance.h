#ifndef TESTS_LOAD_BALANCE_H
#define TESTS_LOAD_BALANCE_H

#include <string>

#include "simulator/control/tsimulatedmachine.h"

namespace nTests {

// What the driver still holds of clients that are all gone, or has no account of, one thing a line;
// empty when everything that began has ended. Gives the driver the time to close the files of those
// that were killed.
[[nodiscard]] std::string imbalanceOf(nSimulator::tSimulatedMachine& machine);

}  // namespace nTests

#endif
