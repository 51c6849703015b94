#ifndef TESTS_LOAD_PENDINGCALLS_H
#define TESTS_LOAD_PENDINGCALLS_H

#include "tests/load/routeclient.h"

namespace nTests {

// Opens a channel to the controller's driver, begins requests that stay pending, makes another call
// meanwhile, and ends most of them; closing the channel ends the rest. Returns the number begun.
uint32_t usePendingRequestsOnce(tRandom& random, tFaults faults);

}  // namespace nTests

#endif
