#ifndef TOOLS_QUENRA_VERBS_TERMINALS_H
#define TOOLS_QUENRA_VERBS_TERMINALS_H

#include "tools/quenra/grammar/arguments.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/verbs/verbcontext.h"

namespace nCommandLine {

// `quenra terminals`: the trigger terminals of the controller.
[[nodiscard]] tExitCode runTerminals(const tArguments& arguments, const tVerbContext& context);

}  // namespace nCommandLine

#endif
