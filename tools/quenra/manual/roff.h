// Text in the form that the man macros of roff accept.
#ifndef TOOLS_QUENRA_MANUAL_ROFF_H
#define TOOLS_QUENRA_MANUAL_ROFF_H

#include <string>
#include <string_view>

namespace nCommandLine {

// Escapes the text so that roff prints it unchanged; a dash stays an ASCII hyphen for copying.
[[nodiscard]] std::string roffText(std::string_view text);

// As above, in bold and in italics (underlined on a terminal without italics).
[[nodiscard]] std::string roffBold(std::string_view text);
[[nodiscard]] std::string roffItalic(std::string_view text);

// Puts each sentence on a line of its own: roff recognises the end of a sentence by the line end.
[[nodiscard]] std::string roffSentences(std::string_view text);

}  // namespace nCommandLine

#endif
