#ifndef TOOLS_QUENRA_COMPLETION_BASHSCRIPT_H
#define TOOLS_QUENRA_COMPLETION_BASHSCRIPT_H

#include <string>

namespace nCommandLine {

// A script for bash 4 or later that completes every verb, option and word of the verb table.
[[nodiscard]] std::string bashScript();

}  // namespace nCommandLine

#endif
