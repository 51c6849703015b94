#include "zoarkra/jsonnumber.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <system_error>

namespace zoark {
namespace {

constexpr bool isDigit(char character) noexcept {
  return character >= '0' && character <= '9';
}

constexpr bool isExponentMark(char character) noexcept {
  return character == 'e' || character == 'E';
}

const char* skipDigits(const char* at) noexcept {
  while (isDigit(*at)) {
    ++at;
  }
  return at;
}

// A number halfway between two doubles has at most 767 significant digits. Past kMaxDigits a digit other
// than 0 only shows that the number lies beyond such a point, and one digit in its place shows the same.
constexpr size_t kMaxDigits = 768;

// 0.DIGITS x 10^magnitude; the first digit is not 0. Without digits it is 0.
struct tDecimal {
  std::array<char, kMaxDigits + 1> digits;
  size_t count = 0;
  int64_t magnitude = 0;

  void append(char digit) noexcept {
    if (count < kMaxDigits) {
      digits[count++] = digit;
    } else if (digit != '0') {
      digits[kMaxDigits] = '1';
      count = kMaxDigits + 1;
    }
  }
};

// The digits of a number that has neither sign nor exponent.
tDecimal decimalOf(std::string_view number) noexcept {
  tDecimal decimal;
  bool isFraction = false;
  for (const char character : number) {
    if (character == '.') {
      isFraction = true;
    } else if (decimal.count == 0 && character == '0') {
      decimal.magnitude -= isFraction ? 1 : 0;
    } else {
      decimal.append(character);
      decimal.magnitude += isFraction ? 0 : 1;
    }
  }
  return decimal;
}

// The value of an exponent's text. An exponent beyond 64 bits becomes one that no number of digits in
// memory cancels.
int64_t exponentOf(std::string_view text) noexcept {
  constexpr int64_t kHuge = int64_t{1} << 62;
  const bool isNegative = text.starts_with('-');
  text.remove_prefix(isNegative || text.starts_with('+') ? 1 : 0);
  int64_t exponent = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), exponent);
  exponent = result.ec == std::errc() ? std::min(exponent, kHuge) : kHuge;
  return isNegative ? -exponent : exponent;
}

}  // namespace

tNumberScan scanNumber(const char* text) noexcept {
  const char* at = *text == '-' ? text + 1 : text;
  if (!isDigit(*at)) {
    return {at, false};
  }
  at = *at == '0' ? at + 1 : skipDigits(at);
  if (*at == '.') {
    ++at;
    if (!isDigit(*at)) {
      return {at, false};
    }
    at = skipDigits(at);
  }
  if (isExponentMark(*at)) {
    ++at;
    at += *at == '+' || *at == '-' ? 1 : 0;
    if (!isDigit(*at)) {
      return {at, false};
    }
    at = skipDigits(at);
  }
  return {at, true};
}

// std::from_chars saturates the exponent that it reads, and so misjudges a long row of digits with an
// exponent that cancels them. It receives the significant digits as a whole number, with the exponent
// of that number.
double valueOfNumber(std::string_view number) noexcept {
  constexpr int64_t kBeyondAnyDouble = 400;
  const bool isNegative = number.starts_with('-');
  number.remove_prefix(isNegative ? 1 : 0);
  const size_t mark = static_cast<size_t>(
      std::find_if(number.begin(), number.end(), isExponentMark) - number.begin());
  tDecimal decimal = decimalOf(number.substr(0, mark));
  if (decimal.count == 0) {
    return 0;
  }
  if (mark != number.size()) {
    decimal.magnitude += exponentOf(number.substr(mark + 1));
  }
  decimal.magnitude = std::clamp(decimal.magnitude, -kBeyondAnyDouble, kBeyondAnyDouble);

  std::array<char, kMaxDigits + 16> text;
  char* end = std::copy_n(decimal.digits.begin(), decimal.count, text.begin());
  *end++ = 'e';
  end = std::to_chars(end, text.end(), decimal.magnitude - static_cast<int64_t>(decimal.count)).ptr;
  double value = 0;
  if (std::from_chars(text.data(), end, value).ec == std::errc::result_out_of_range) {
    value = decimal.magnitude > 0 ? std::numeric_limits<double>::infinity() : 0;
  }
  return isNegative ? -value : value;
}

}  // namespace zoark
