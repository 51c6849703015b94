#ifndef TOOLS_QUENRA_VERBS_OPENING_H
#define TOOLS_QUENRA_VERBS_OPENING_H

#include <cstdint>
#include <vector>

#include "tools/quenra/output/warning.h"

namespace nCommandLine {

// Judges what opening the controller answered: throws tCommandError for a failure, adds a warning.
void judgeOpening(int32_t code, std::vector<tWarning>& warnings);

}  // namespace nCommandLine

#endif
