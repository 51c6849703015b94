#ifndef TESTS_COMPONENT_ROUTINGADAPTORINTERFACE_SCRIPTEDDEVICE_H
#define TESTS_COMPONENT_ROUTINGADAPTORINTERFACE_SCRIPTEDDEVICE_H

#include "tests/component/zoarkra/tscriptedroutingdevice.h"

namespace nTests {

// The sessions that are created from now on open this in the place of the system's device.
void useDevice(tRoutingDeviceScript& script) noexcept;

}  // namespace nTests

#endif
