#ifndef TOOLS_QUENRA_VERBS_GET_H
#define TOOLS_QUENRA_VERBS_GET_H

#include "tools/quenra/grammar/arguments.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/verbs/verbcontext.h"

namespace nCommandLine {

// `quenra get`: one attribute.
[[nodiscard]] tExitCode runGet(const tArguments& arguments, const tVerbContext& context);

}  // namespace nCommandLine

#endif
