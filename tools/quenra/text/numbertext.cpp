#include "tools/quenra/text/numbertext.h"

#include <array>
#include <bit>
#include <charconv>
#include <cstdio>

namespace nCommandLine {
namespace {

template <class Number>
std::optional<Number> parseNumber(std::string_view text, int base) noexcept {
  Number value{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value, base);
  return error == std::errc{} && stop == end ? std::optional(value) : std::nullopt;
}

bool hasHexadecimalPrefix(std::string_view text) noexcept {
  return text.starts_with("0x") || text.starts_with("0X");
}

// Accepts any number of digits.
bool isInteger(std::string_view text) noexcept {
  const bool isHexadecimal = hasHexadecimalPrefix(text);
  text.remove_prefix(isHexadecimal ? 2 : text.starts_with('-') ? 1 : 0);
  return !text.empty() &&
         text.find_first_not_of(isHexadecimal ? "0123456789abcdefABCDEF" : "0123456789") ==
             std::string_view::npos;
}

}  // namespace

bool looksLikeNumber(std::string_view text) noexcept {
  return !text.empty() && std::string_view("+-0123456789").find(text.front()) != text.npos;
}

std::optional<uint32_t> parseUnsigned(std::string_view text) noexcept {
  return hasHexadecimalPrefix(text) ? parseNumber<uint32_t>(text.substr(2), 16)
                                    : parseNumber<uint32_t>(text, 10);
}

std::optional<int32_t> parseStatusCode(std::string_view text) noexcept {
  if (text.starts_with('+')) {
    return parseUnsigned(text.substr(1)) ? parseStatusCode(text.substr(1)) : std::nullopt;
  }
  if (text.starts_with('-')) {
    return parseNumber<int32_t>(text, 10);
  }
  const auto bits = parseUnsigned(text);
  return bits ? std::optional(std::bit_cast<int32_t>(*bits)) : std::nullopt;
}

std::string numberFault(std::string_view text, std::string_view expected, int64_t minimum,
                        int64_t maximum) {
  if (isInteger(text)) {
    return std::string(text) + " is out of range (" + std::to_string(minimum) + " to " +
           std::to_string(maximum) + ")";
  }
  return "'" + std::string(text) + "' is not " + std::string(expected);
}

std::string hexadecimalText(uint32_t value, int digits) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "0x%0*X", digits, static_cast<unsigned>(value));
  return text.data();
}

}  // namespace nCommandLine
