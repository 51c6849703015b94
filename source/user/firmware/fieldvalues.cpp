#include "source/user/firmware/fieldvalues.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "source/user/firmware/timagetext.h"

namespace nQUENRA1400 {
namespace {

// Accepts digits only: neither blanks nor a sign.
uint32_t magnitudeOf(std::string_view digits, int base, bool isNegative) noexcept {
  uint32_t value = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
  if (result.ec == std::errc::result_out_of_range) {
    return UINT32_MAX;
  }
  return isNegative ? 0 - value : value;
}

}  // namespace

uint32_t numberOf(std::string_view text) noexcept {
  constexpr std::string_view kHexadecimal = "0x";
  if (text.starts_with(kHexadecimal)) {
    return magnitudeOf(text.substr(kHexadecimal.size()), 16, false);
  }
  text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
  const bool isNegative = text.starts_with('-');
  if (isNegative || text.starts_with('+')) {
    text.remove_prefix(1);
  }
  return magnitudeOf(text, 10, isNegative);
}

std::optional<tTextRange> withoutQuotes(tTextRange value, size_t firstQuote,
                                        size_t secondQuote) noexcept {
  if (firstQuote == tImageText::kNotFound) {
    return value;
  }
  if (secondQuote == tImageText::kNotFound) {
    return std::nullopt;
  }
  return secondQuote + 1 == value.end ? tTextRange{firstQuote + 1, secondQuote} : value;
}

}  // namespace nQUENRA1400
