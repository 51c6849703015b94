#ifndef SOURCE_USER_FIRMWARE_FIELDVALUES_H
#define SOURCE_USER_FIRMWARE_FIELDVALUES_H

#include <cstdint>
#include <optional>
#include <string_view>

namespace nQUENRA1400 {

// The number at the beginning of a text, as C's conversion with a 32-bit result reads it: blanks, a
// sign, digits; hexadecimal when the text begins with "0x" in lower case. What follows is ignored; 0
// when there is no number; all ones when it is too large, whatever its sign; else a minus sign negates
// modulo 2^32.
[[nodiscard]] uint32_t numberOf(std::string_view text) noexcept;

// The text between its two first double quotes, when the second one ends it; else the text as it
// stands. Nothing when a quote is opened and never closed.
[[nodiscard]] std::optional<std::string_view> withoutQuotes(std::string_view text) noexcept;

}  // namespace nQUENRA1400

#endif
