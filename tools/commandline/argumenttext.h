// Names and numbers as users write them in arguments.
#ifndef TOOLS_COMMANDLINE_ARGUMENTTEXT_H
#define TOOLS_COMMANDLINE_ARGUMENTTEXT_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nCommandLine {

// Normalises a name for comparison: lower case, '-' for '_'.
[[nodiscard]] std::string comparableName(std::string_view name);

// At most three of `candidates` that the user may have meant by `name`, most likely first: a few
// typing errors away, or containing `name`.
[[nodiscard]] std::vector<std::string> suggest(std::string_view name,
                                               const std::vector<std::string_view>& candidates);

// "a, b or c"
[[nodiscard]] std::string alternatives(std::span<const std::string> names);

// True if a text begins with a digit or a sign, and so is a number rather than a name.
[[nodiscard]] bool looksLikeNumber(std::string_view text) noexcept;

// Parses a decimal number, or a hexadecimal one after 0x. Empty for other text and beyond the bits.
[[nodiscard]] std::optional<uint64_t> parseUnsigned64(std::string_view text) noexcept;
[[nodiscard]] std::optional<uint32_t> parseUnsigned(std::string_view text) noexcept;

// Parses a decimal number of seconds with at most three places after the point. Empty for other text and
// beyond 32 bits.
[[nodiscard]] std::optional<std::chrono::milliseconds> parseSeconds(std::string_view text) noexcept;

// Parses a status code in the forms that programs print: signed decimal, or the same 32 bits as an
// unsigned number, decimal or hexadecimal.
[[nodiscard]] std::optional<int32_t> parseStatusCode(std::string_view text) noexcept;

// Formats with a leading 0x and at least `digits` digits.
[[nodiscard]] std::string hexadecimalText(uint32_t value, int digits = 1);

// The reason why a text is not accepted: "4294967296 is out of range (0 to 4294967295)" for an
// integer, "'x' is not a number" for any other text when `expected` is "a number".
[[nodiscard]] std::string numberFault(std::string_view text, std::string_view expected,
                                      int64_t minimum = 0, uint64_t maximum = UINT32_MAX);

}  // namespace nCommandLine

#endif
