#ifndef TOOLS_QUENRA_VERBS_ATTRIBUTES_H
#define TOOLS_QUENRA_VERBS_ATTRIBUTES_H

#include "tools/quenra/exitcode.h"
#include "tools/quenra/grammar/arguments.h"
#include "tools/quenra/verbs/verbcontext.h"

namespace nCommandLine {

// `quenra attributes`: the catalogue. Needs no controller.
[[nodiscard]] tExitCode runAttributes(const tArguments& arguments, const tVerbContext& context);

}  // namespace nCommandLine

#endif
