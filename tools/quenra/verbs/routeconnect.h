#ifndef TOOLS_QUENRA_VERBS_ROUTECONNECT_H
#define TOOLS_QUENRA_VERBS_ROUTECONNECT_H

#include "tools/quenra/grammar/arguments.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/verbs/verbcontext.h"

namespace nCommandLine {

// `quenra route connect`: connects two terminals and holds the route.
[[nodiscard]] tExitCode runRouteConnect(const tArguments& arguments, const tVerbContext& context);

}  // namespace nCommandLine

#endif
