#ifndef TOOLS_QUENRA_VERBS_FIRMWAREINSPECT_H
#define TOOLS_QUENRA_VERBS_FIRMWAREINSPECT_H

#include "tools/quenra/grammar/arguments.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/verbs/verbcontext.h"

namespace nCommandLine {

// `quenra firmware inspect`: shows a firmware image.
[[nodiscard]] tExitCode runFirmwareInspect(const tArguments& arguments,
                                           const tVerbContext& context);

}  // namespace nCommandLine

#endif
