#ifndef SIMULATOR_CONTROL_DEVICEINTERFACES_H
#define SIMULATOR_CONTROL_DEVICEINTERFACES_H

#include <string>
#include <vector>

#include "protocol/interfaces.h"

namespace nSimulator {

// Returns the paths of the present device interfaces of a class, in the system's order.
[[nodiscard]] std::vector<std::string> presentInterfaces(const tInterfaceClass& interfaceClass);

}  // namespace nSimulator

#endif
