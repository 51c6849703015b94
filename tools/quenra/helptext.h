#ifndef TOOLS_QUENRA_HELPTEXT_H
#define TOOLS_QUENRA_HELPTEXT_H

#include <string>
#include <string_view>

namespace nCommandLine {

// What stands below the options in the help of a verb, or of the program for an empty verb:
// examples and the exit codes.
[[nodiscard]] std::string helpFooter(std::string_view verb);

}  // namespace nCommandLine

#endif
