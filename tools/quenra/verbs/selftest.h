#ifndef TOOLS_QUENRA_VERBS_SELFTEST_H
#define TOOLS_QUENRA_VERBS_SELFTEST_H

#include "tools/quenra/grammar/arguments.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/verbs/verbcontext.h"

namespace nCommandLine {

// `quenra self-test`: opens the controller and lets the library test itself.
[[nodiscard]] tExitCode runSelfTest(const tArguments& arguments, const tVerbContext& context);

}  // namespace nCommandLine

#endif
