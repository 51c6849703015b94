#ifndef TOOLS_QUENRA_VERBS_ATTRIBUTES_H
#define TOOLS_QUENRA_VERBS_ATTRIBUTES_H

#include "tools/quenra/grammar/arguments.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/verbs/verbcontext.h"

namespace nCommandLine {

// `quenra attributes`: the table of attributes. Needs no controller.
[[nodiscard]] tExitCode runAttributes(const tArguments& arguments, const tVerbContext& context);

}  // namespace nCommandLine

#endif
