#ifndef TOOLS_QUENRA_VERBS_INFO_H
#define TOOLS_QUENRA_VERBS_INFO_H

#include "tools/quenra/exitcode.h"
#include "tools/quenra/grammar/arguments.h"
#include "tools/quenra/verbs/verbcontext.h"

namespace nCommandLine {

// `quenra info`: all attributes by subject. What cannot be read is shown as such; only failures
// other than an attribute's absence make the exit code `failure`, with everything else still shown.
[[nodiscard]] tExitCode runInfo(const tArguments& arguments, const tVerbContext& context);

}  // namespace nCommandLine

#endif
