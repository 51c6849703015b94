#ifndef TESTS_COMPONENT_ROUTINGADAPTORINTERFACE_SCRIPTEDDEVICE_H
#define TESTS_COMPONENT_ROUTINGADAPTORINTERFACE_SCRIPTEDDEVICE_H

#include "tests/component/zoarkra/tscriptedroutingdevice.h"

namespace nTests {

// Sessions created from now on open the scripted device instead of the system's.
void useDevice(tRoutingDeviceScript& script) noexcept;

}  // namespace nTests

#endif
