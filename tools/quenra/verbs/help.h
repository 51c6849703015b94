#ifndef TOOLS_QUENRA_VERBS_HELP_H
#define TOOLS_QUENRA_VERBS_HELP_H

#include "tools/quenra/grammar/arguments.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/verbs/verbcontext.h"

namespace nCommandLine {

// `quenra help` and --help: the help of the program or of a verb, or the manual page.
[[nodiscard]] tExitCode runHelp(const tArguments& arguments, const tVerbContext& context);

}  // namespace nCommandLine

#endif
