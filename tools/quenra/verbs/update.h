#ifndef TOOLS_QUENRA_VERBS_UPDATE_H
#define TOOLS_QUENRA_VERBS_UPDATE_H

#include "tools/quenra/grammar/arguments.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/verbs/verbcontext.h"

namespace nCommandLine {

// `quenra update`: applies a firmware image, or prints the plan of the update.
[[nodiscard]] tExitCode runUpdate(const tArguments& arguments, const tVerbContext& context);

}  // namespace nCommandLine

#endif
