// The arguments and the output that the verbs of routes share.
#ifndef TOOLS_QUENRA_VERBS_ROUTES_H
#define TOOLS_QUENRA_VERBS_ROUTES_H

#include <string>
#include <vector>

#include "tools/commandline/grammar.h"
#include "tools/quenra/output/tjsondocument.h"
#include "tools/quenra/routing/troutingsession.h"

namespace nCommandLine {

// Parses the route arguments of a verb. Throws tCommandError, with suggestions, for a terminal that
// the session does not have.
[[nodiscard]] tRouteRequest parseRouteRequest(const tArguments& arguments,
                                              tRoutingSession& session);

// Throws tCommandError for a verb that found no route.
[[noreturn]] void rejectWithoutRoute(const tRouteRequest& request);

// "TRIG_SMB -> PXI_Trig0", with a question mark for a terminal unknown to the library.
[[nodiscard]] std::string pathText(const std::vector<std::string>& path);

// Writes the members of a route into the open object.
void writeRoute(tJsonDocument& document, const tRoute& route, const std::vector<std::string>& path);

}  // namespace nCommandLine

#endif
