#ifndef TOOLS_QUENRA_VERBS_ROUTEARGUMENTS_H
#define TOOLS_QUENRA_VERBS_ROUTEARGUMENTS_H

#include "tools/quenra/grammar/arguments.h"
#include "tools/quenra/routing/troutingsession.h"

namespace nCommandLine {

// Parses the route arguments of a verb. Throws tCommandError, with suggestions, for a terminal that
// the session does not have.
[[nodiscard]] tWantedRoute wantedRoute(const tArguments& arguments, tRoutingSession& session);

// Throws tCommandError for a verb that found no route.
[[noreturn]] void refuseRoute(const tWantedRoute& wanted);

}  // namespace nCommandLine

#endif
