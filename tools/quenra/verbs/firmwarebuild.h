#ifndef TOOLS_QUENRA_VERBS_FIRMWAREBUILD_H
#define TOOLS_QUENRA_VERBS_FIRMWAREBUILD_H

#include "tools/quenra/grammar/arguments.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/verbs/verbcontext.h"

namespace nCommandLine {

// `quenra firmware build`: builds a firmware image.
[[nodiscard]] tExitCode runFirmwareBuild(const tArguments& arguments, const tVerbContext& context);

}  // namespace nCommandLine

#endif
