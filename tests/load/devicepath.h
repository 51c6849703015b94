#ifndef TESTS_LOAD_DEVICEPATH_H
#define TESTS_LOAD_DEVICEPATH_H

#include <string>

namespace nTests {

// The path of the routing device, as the library returns it.
[[nodiscard]] std::string routingDevicePath();

}  // namespace nTests

#endif
