#ifndef TOOLS_QUENRA_VERBS_GET_H
#define TOOLS_QUENRA_VERBS_GET_H

#include "tools/quenra/arguments.h"
#include "tools/quenra/exitcode.h"
#include "tools/quenra/verbs/verbcontext.h"

namespace nCommandLine {

// `quenra get`: one attribute.
[[nodiscard]] tExitCode runGet(const tGetArguments& arguments, const tVerbContext& context);

}  // namespace nCommandLine

#endif
