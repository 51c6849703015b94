#ifndef TOOLS_QUENRA_CATALOGUE_NUMBERTEXT_H
#define TOOLS_QUENRA_CATALOGUE_NUMBERTEXT_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace nCommandLine {

// Whether a text is meant as a number rather than a name: it begins with a digit or a sign.
[[nodiscard]] bool looksLikeNumber(std::string_view text) noexcept;

// Decimal, or hexadecimal after 0x. Nothing for anything else and for what needs more than 32 bits.
[[nodiscard]] std::optional<uint32_t> parseUnsigned(std::string_view text) noexcept;

// A status code as programs show it: signed decimal, or its 32 bits as an unsigned number, decimal
// or hexadecimal.
[[nodiscard]] std::optional<int32_t> parseStatusCode(std::string_view text) noexcept;

// With 0x and at least as many digits as given.
[[nodiscard]] std::string hexadecimalText(uint32_t value, int digits = 1);

// The fault of a text that is not accepted: "4294967296 is out of range (0 to 4294967295)" of an
// integer, "'x' is not a number" of any other text, for `expected` "a number".
[[nodiscard]] std::string numberFault(std::string_view text, std::string_view expected,
                                      int64_t least = 0, int64_t most = UINT32_MAX);

}  // namespace nCommandLine

#endif
