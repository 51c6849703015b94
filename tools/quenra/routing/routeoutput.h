// Routes as text and as JSON.
#ifndef TOOLS_QUENRA_ROUTING_ROUTEOUTPUT_H
#define TOOLS_QUENRA_ROUTING_ROUTEOUTPUT_H

#include <string>
#include <vector>

#include "tools/quenra/output/tjsondocument.h"
#include "tools/quenra/routing/troutingsession.h"

namespace nCommandLine {

// "TRIG_SMB -> PXI_Trig0", with a question mark for a terminal unknown to the library.
[[nodiscard]] std::string pathText(const std::vector<std::string>& path);

// Writes the members of a route into the open object.
void writeRoute(tJsonDocument& document, const tRoute& route, const std::vector<std::string>& path);

}  // namespace nCommandLine

#endif
