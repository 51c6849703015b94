// How routes are shown.
#ifndef TOOLS_QUENRA_ROUTING_ROUTEOUTPUT_H
#define TOOLS_QUENRA_ROUTING_ROUTEOUTPUT_H

#include <string>
#include <vector>

#include "tools/quenra/output/tjsondocument.h"
#include "tools/quenra/routing/troutingsession.h"

namespace nCommandLine {

// "TRIG_SMB -> PXI_Trig0"; a terminal that the library does not know is a question mark.
[[nodiscard]] std::string pathText(const std::vector<std::string>& path);

// The members of a route, into the object that is open.
void writeRoute(tJsonDocument& document, const tRoute& route, const std::vector<std::string>& path);

}  // namespace nCommandLine

#endif
