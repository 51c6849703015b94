#ifndef TOOLS_QUENRA_VERBS_OPENING_H
#define TOOLS_QUENRA_VERBS_OPENING_H

#include <cstdint>
#include <vector>

#include "tools/quenra/exitcode.h"
#include "tools/quenra/output/warning.h"

namespace nCommandLine {

// With which the program ends when the controller cannot be opened.
[[nodiscard]] tExitCode exitCodeOfOpening(int32_t code) noexcept;

// Judges what opening the controller answered: throws tCommandError for a failure, adds a warning.
void judgeOpening(int32_t code, std::vector<tWarning>& warnings);

}  // namespace nCommandLine

#endif
