#ifndef TOOLS_QUENRA_OUTPUT_UTF8TEXT_H
#define TOOLS_QUENRA_OUTPUT_UTF8TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace nCommandLine {

// Firmware texts and arguments may hold any bytes.

// The same text with a replacement character for what is not UTF-8.
[[nodiscard]] std::string validUtf8(std::string_view bytes);

// As above, and control characters as \x1B: a text never moves a terminal's cursor or ends a line.
[[nodiscard]] std::string printableText(std::string_view bytes);

[[nodiscard]] bool isUtf8(std::string_view bytes);

// In code points, which is the width of all but a few scripts.
[[nodiscard]] size_t widthOf(std::string_view utf8) noexcept;

}  // namespace nCommandLine

#endif
