#ifndef TOOLS_QUENRA_VERBS_VERSION_H
#define TOOLS_QUENRA_VERBS_VERSION_H

#include "tools/quenra/grammar/arguments.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/verbs/verbcontext.h"

namespace nCommandLine {

// `quenra --version`.
[[nodiscard]] tExitCode runVersion(const tArguments& arguments, const tVerbContext& context);

}  // namespace nCommandLine

#endif
