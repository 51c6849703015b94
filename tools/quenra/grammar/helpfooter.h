// What stands below the options in the help: examples and the exit codes.
#ifndef TOOLS_QUENRA_GRAMMAR_HELPFOOTER_H
#define TOOLS_QUENRA_GRAMMAR_HELPFOOTER_H

#include <string>

#include "tools/quenra/grammar/verbrow.h"

namespace nCommandLine {

[[nodiscard]] std::string helpFooter(const tVerbRow& verb);
// Of the program: the first example of every verb.
[[nodiscard]] std::string helpFooter();

}  // namespace nCommandLine

#endif
