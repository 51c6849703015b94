#ifndef TOOLS_QUENRA_VERBS_EXPLAIN_H
#define TOOLS_QUENRA_VERBS_EXPLAIN_H

#include "tools/quenra/grammar/arguments.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/verbs/verbcontext.h"

namespace nCommandLine {

// `quenra explain`: meaning and remedy of a status code. Needs no controller.
[[nodiscard]] tExitCode runExplain(const tArguments& arguments, const tVerbContext& context);

}  // namespace nCommandLine

#endif
