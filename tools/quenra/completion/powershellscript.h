#ifndef TOOLS_QUENRA_COMPLETION_POWERSHELLSCRIPT_H
#define TOOLS_QUENRA_COMPLETION_POWERSHELLSCRIPT_H

#include <string>

namespace nCommandLine {

// A script for PowerShell 5 or later that completes every verb, option and word of the verb table,
// with a description of each.
[[nodiscard]] std::string powershellScript();

}  // namespace nCommandLine

#endif
