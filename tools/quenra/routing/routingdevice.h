#ifndef TOOLS_QUENRA_ROUTING_ROUTINGDEVICE_H
#define TOOLS_QUENRA_ROUTING_ROUTINGDEVICE_H

#include <string>

#include "tools/quenra/reading/iquenra.h"

namespace nCommandLine {

// The path of the device for routing sessions. Throws tCommandError on failure.
[[nodiscard]] std::string routingDevice(iQuenra& library);

}  // namespace nCommandLine

#endif
