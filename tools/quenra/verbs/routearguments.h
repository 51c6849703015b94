#ifndef TOOLS_QUENRA_VERBS_ROUTEARGUMENTS_H
#define TOOLS_QUENRA_VERBS_ROUTEARGUMENTS_H

#include "tools/quenra/grammar/arguments.h"
#include "tools/quenra/routing/troutingsession.h"

namespace nCommandLine {

// The route that a verb is asked for. Throws tCommandError, with what may have been meant, when the
// session does not know a terminal.
[[nodiscard]] tWantedRoute wantedRoute(const tArguments& arguments, tRoutingSession& session);

// Ends a verb that found no route.
[[noreturn]] void refuseRoute(const tWantedRoute& wanted);

}  // namespace nCommandLine

#endif
