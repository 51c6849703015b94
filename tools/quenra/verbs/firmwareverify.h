#ifndef TOOLS_QUENRA_VERBS_FIRMWAREVERIFY_H
#define TOOLS_QUENRA_VERBS_FIRMWAREVERIFY_H

#include "tools/quenra/grammar/arguments.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/verbs/verbcontext.h"

namespace nCommandLine {

// `quenra firmware verify`: checks a firmware image.
[[nodiscard]] tExitCode runFirmwareVerify(const tArguments& arguments, const tVerbContext& context);

}  // namespace nCommandLine

#endif
