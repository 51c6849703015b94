#ifndef TESTS_COMPONENT_LYINGDRIVER_CLIENTLIFE_H
#define TESTS_COMPONENT_LYINGDRIVER_CLIENTLIFE_H

#include <cstdint>
#include <span>

#include "tests/component/lyingdriver/tlies.h"
#include "tests/fakewindows/machine.h"

namespace nTests {

// The fake machine, the way the life needs it: to be made once.
void prepareMachineForLives();

// Leads the life of a client that asks for everything there is: attributes, routes, demotions, with a
// driver. The client's buffers are exactly as large as it says. Notices are sent as the bytes say.
// Nothing may be left behind; the program ends at what is.
void liveWith(nFakeWindows::tDriver driver, tByteSource& notices);

// The same with a driver that lies as the bytes say, also about when and how often requests complete.
void liveWithLies(std::span<const uint8_t> bytes);

}  // namespace nTests

#endif
