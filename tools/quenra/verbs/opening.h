#ifndef TOOLS_QUENRA_VERBS_OPENING_H
#define TOOLS_QUENRA_VERBS_OPENING_H

#include <cstdint>
#include <vector>

#include "tools/quenra/exitcode.h"
#include "tools/quenra/output/warning.h"
#include "tools/quenra/reading/tcontroller.h"

namespace nCommandLine {

// The exit code of a program that cannot open the controller.
[[nodiscard]] tExitCode exitCodeOfOpening(int32_t code) noexcept;

// Throws tCommandError where opening the controller failed; adds its warning.
void judgeOpening(int32_t code, std::vector<tWarning>& warnings);
// ... with the cause, as far as the present device interfaces show it.
void judgeOpening(const tController& controller, std::vector<tWarning>& warnings);

}  // namespace nCommandLine

#endif
