#ifndef TOOLS_COMMANDLINE_UTF8TEXT_H
#define TOOLS_COMMANDLINE_UTF8TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace nCommandLine {

// Firmware texts and arguments may contain any bytes.

// The same text with a replacement character for each byte that is not UTF-8.
[[nodiscard]] std::string validUtf8(std::string_view bytes);

// As above, with escapes (\x1B, \u202E) for control characters, line separators, byte order marks and
// marks that change the direction of writing: a text never moves a terminal's cursor, ends a line or
// rearranges one.
[[nodiscard]] std::string printableText(std::string_view bytes);

// The text as a quoted JSON string, with the same characters escaped.
[[nodiscard]] std::string jsonText(std::string_view bytes);

[[nodiscard]] bool isUtf8(std::string_view bytes);

// The width in code points, which is right for all but a few scripts.
[[nodiscard]] size_t widthOf(std::string_view utf8) noexcept;

// Converts a word of the system's command line to UTF-8. An unpaired surrogate becomes three bytes
// that are not valid UTF-8, so that distinct words stay distinct.
[[nodiscard]] std::string utf8Word(std::u16string_view word);

}  // namespace nCommandLine

#endif
