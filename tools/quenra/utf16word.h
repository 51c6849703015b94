#ifndef TOOLS_QUENRA_UTF16WORD_H
#define TOOLS_QUENRA_UTF16WORD_H

#include <string>
#include <string_view>

namespace nCommandLine {

// A word of the system's command line as UTF-8. Half of a surrogate pair, which stands for no
// character, becomes three bytes that are not UTF-8: the word is never taken for another one.
[[nodiscard]] std::string utf8Word(std::u16string_view word);

}  // namespace nCommandLine

#endif
