#ifndef TOOLS_QUENRA_VERBS_SET_H
#define TOOLS_QUENRA_VERBS_SET_H

#include "tools/quenra/grammar/arguments.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/verbs/verbcontext.h"

namespace nCommandLine {

// `quenra set`: writes one attribute.
[[nodiscard]] tExitCode runSet(const tArguments& arguments, const tVerbContext& context);

}  // namespace nCommandLine

#endif
