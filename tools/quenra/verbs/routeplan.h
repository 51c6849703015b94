#ifndef TOOLS_QUENRA_VERBS_ROUTEPLAN_H
#define TOOLS_QUENRA_VERBS_ROUTEPLAN_H

#include "tools/quenra/grammar/arguments.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/verbs/verbcontext.h"

namespace nCommandLine {

// `quenra route plan`: lists the routes between two terminals without connecting any.
[[nodiscard]] tExitCode runRoutePlan(const tArguments& arguments, const tVerbContext& context);

}  // namespace nCommandLine

#endif
