// The end of a help text, after the options: examples and the exit codes.
#ifndef TOOLS_QUENRA_GRAMMAR_HELPFOOTER_H
#define TOOLS_QUENRA_GRAMMAR_HELPFOOTER_H

#include <string>

#include "tools/quenra/grammar/verbrow.h"

namespace nCommandLine {

[[nodiscard]] std::string helpFooter(const tVerbRow& verb);
// The footer of the program's help: the first example of every verb.
[[nodiscard]] std::string helpFooter();

}  // namespace nCommandLine

#endif
