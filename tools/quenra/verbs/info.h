#ifndef TOOLS_QUENRA_VERBS_INFO_H
#define TOOLS_QUENRA_VERBS_INFO_H

#include "tools/quenra/grammar/arguments.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/verbs/verbcontext.h"

namespace nCommandLine {

// `quenra info`: all attributes by subject. Shows an absent attribute as absent. Any other
// failure to read one sets the exit code to `failure`; the remaining attributes are still shown.
[[nodiscard]] tExitCode runInfo(const tArguments& arguments, const tVerbContext& context);

}  // namespace nCommandLine

#endif
