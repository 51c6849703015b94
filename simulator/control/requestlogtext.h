#ifndef SIMULATOR_CONTROL_REQUESTLOGTEXT_H
#define SIMULATOR_CONTROL_REQUESTLOGTEXT_H

#include <string>

#include "simulator/control/controlprotocol.h"

namespace nSimulator {

// "controller", "marten", ...; a number for an unknown one.
[[nodiscard]] std::string interfaceName(uint32_t interfaceKind);
// "get-attribute", ...; the code in hexadecimal for an unknown one.
[[nodiscard]] std::string requestName(uint32_t requestCode);

// One line for one entry of the log, without a line end: what came on which interface, the members
// of the request by name, and how it was answered.
[[nodiscard]] std::string requestLogLine(const tSimulatorLogEntry& entry);

}  // namespace nSimulator

#endif
