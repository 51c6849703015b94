#ifndef SIMULATOR_CONTROL_REQUESTLOGTEXT_H
#define SIMULATOR_CONTROL_REQUESTLOGTEXT_H

#include <string>

#include "simulator/protocol/controlprotocol.h"

namespace nSimulator {

// "controller", "marten", ...; the number for an unknown interface.
[[nodiscard]] std::string interfaceName(uint32_t interfaceKind);
// "get-attribute", ...; the code in hexadecimal for an unknown request.
[[nodiscard]] std::string requestName(uint32_t requestCode);

// Formats a log entry as one line without a line end: the interface, the request with its members
// by name, and the reply.
[[nodiscard]] std::string requestLogLine(const tSimulatorLogEntry& entry);

}  // namespace nSimulator

#endif
