// Text as the man macros of roff take it.
#ifndef TOOLS_QUENRA_MANUAL_ROFF_H
#define TOOLS_QUENRA_MANUAL_ROFF_H

#include <string>
#include <string_view>

namespace nCommandLine {

// Every character stands for itself. A dash stays the one that can be copied into a command line.
[[nodiscard]] std::string roffText(std::string_view text);

// The same in bold, and underlined where a terminal has no italics.
[[nodiscard]] std::string roffBold(std::string_view text);
[[nodiscard]] std::string roffItalic(std::string_view text);

// A line for each sentence, which is how roff knows where sentences end.
[[nodiscard]] std::string roffSentences(std::string_view text);

}  // namespace nCommandLine

#endif
