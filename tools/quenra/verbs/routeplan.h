#ifndef TOOLS_QUENRA_VERBS_ROUTEPLAN_H
#define TOOLS_QUENRA_VERBS_ROUTEPLAN_H

#include "tools/quenra/exitcode.h"
#include "tools/quenra/grammar/arguments.h"
#include "tools/quenra/verbs/verbcontext.h"

namespace nCommandLine {

// `quenra route plan`: the routes between two terminals, none of which is made.
[[nodiscard]] tExitCode runRoutePlan(const tArguments& arguments, const tVerbContext& context);

}  // namespace nCommandLine

#endif
