#ifndef TESTS_COMPONENT_MISBEHAVINGDRIVER_CLIENTLIFE_H
#define TESTS_COMPONENT_MISBEHAVINGDRIVER_CLIENTLIFE_H

#include <cstdint>
#include <span>

#include "tests/component/misbehavingdriver/misbehavingdriver.h"
#include "tests/fakewindows/machine.h"

namespace nTests {

// Prepares the fake machine for the functions below. Call it once.
void prepareMachineForLives();

// Runs a client that uses attributes, routes and demotions with this driver. Its buffers have the
// exact size that it passes; `notices` determines the notices that the machine sends. Ends the
// program if an object remains open.
void liveWith(nFakeWindows::tDriver driver, tByteSource& notices);

// The same with a driver whose replies, completion times and repeated completions follow `bytes`.
void liveWithLies(std::span<const uint8_t> bytes);

}  // namespace nTests

#endif
