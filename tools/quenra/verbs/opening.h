#ifndef TOOLS_QUENRA_VERBS_OPENING_H
#define TOOLS_QUENRA_VERBS_OPENING_H

#include <cstdint>
#include <string>
#include <vector>

#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/reading/tcontroller.h"

namespace nCommandLine {

// The exit code of a program that cannot open the controller.
[[nodiscard]] tExitCode exitCodeOfOpening(int32_t code) noexcept;

// A failure to open the controller, with its cause as far as the present device interfaces show it.
struct tOpeningFault {
  std::string fact;              // "cannot open the controller: ..."
  tSiteExplanation explanation;  // of the code
};

// Precondition: the controller's code is negative.
[[nodiscard]] tOpeningFault faultOfOpening(const tController& controller);

// Throws tCommandError if opening the controller failed; adds its warning.
void judgeOpening(int32_t code, std::vector<tWarning>& warnings);
// As above, with the cause as far as the present device interfaces show it.
void judgeOpening(const tController& controller, std::vector<tWarning>& warnings);

}  // namespace nCommandLine

#endif
