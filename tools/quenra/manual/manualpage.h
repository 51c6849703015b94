#ifndef TOOLS_QUENRA_MANUAL_MANUALPAGE_H
#define TOOLS_QUENRA_MANUAL_MANUALPAGE_H

#include <string>

namespace nCommandLine {

// The page quenra(1), as input for man: every verb and option of the verb table.
[[nodiscard]] std::string manualPage();

}  // namespace nCommandLine

#endif
