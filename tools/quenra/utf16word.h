#ifndef TOOLS_QUENRA_UTF16WORD_H
#define TOOLS_QUENRA_UTF16WORD_H

#include <string>
#include <string_view>

namespace nCommandLine {

// Converts a word of the system's command line to UTF-8. An unpaired surrogate becomes three bytes
// that are not valid UTF-8, so that distinct words stay distinct.
[[nodiscard]] std::string utf8Word(std::u16string_view word);

}  // namespace nCommandLine

#endif
