#ifndef TOOLS_QUENRA_GRAMMAR_HELPTEXT_H
#define TOOLS_QUENRA_GRAMMAR_HELPTEXT_H

#include <string>
#include <string_view>

namespace nCommandLine {

// The help of a verb, of a group of verbs, or of the program for an empty name. Throws
// tCommandError for an unknown verb.
[[nodiscard]] std::string helpText(std::string_view verb);

}  // namespace nCommandLine

#endif
