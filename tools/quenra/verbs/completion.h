#ifndef TOOLS_QUENRA_VERBS_COMPLETION_H
#define TOOLS_QUENRA_VERBS_COMPLETION_H

#include "tools/quenra/grammar/arguments.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/verbs/verbcontext.h"

namespace nCommandLine {

// `quenra completion`: the script that a shell loads. Needs no controller.
[[nodiscard]] tExitCode runCompletion(const tArguments& arguments, const tVerbContext& context);

}  // namespace nCommandLine

#endif
