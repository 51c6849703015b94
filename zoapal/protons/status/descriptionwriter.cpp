#include "zoapal/protons/status/descriptionwriter.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

namespace zoerr {
namespace {

constexpr std::string_view kBlanks = " \t\n\r";

constexpr char closerOf(char opener) noexcept {
  return opener == '{' ? '}' : ']';
}

// The position at which the container at the start of the text closes; none if it does not.
std::optional<size_t> findCloser(std::string_view text) noexcept {
  size_t depth = 0;
  bool inString = false;
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (inString) {
      if (c == '\\') {
        ++i;
      } else if (c == '"') {
        inString = false;
      }
    } else if (c == '"') {
      inString = true;
    } else if (c == '{' || c == '[') {
      ++depth;
    } else if ((c == '}' || c == ']') && --depth == 0) {
      return c == closerOf(text.front()) ? std::optional(i) : std::nullopt;
    }
  }
  return std::nullopt;
}

// The text of a buffer; none if the marker or the NUL is missing or the text is not a container.
std::optional<std::string_view> textOf(const char* buffer, uint32_t capacity) noexcept {
  if (buffer == nullptr || capacity < kMinDescription ||
      buffer[capacity - 1] != kDescriptionMarker) {
    return std::nullopt;
  }
  const void* end = std::memchr(buffer, '\0', capacity - 1);
  if (end == nullptr || (buffer[0] != '{' && buffer[0] != '[')) {
    return std::nullopt;
  }
  return std::string_view(buffer, static_cast<size_t>(static_cast<const char*>(end) - buffer));
}

// The form of a byte in a JSON string: itself, or an escape of at most six characters.
struct tEscape {
  std::array<char, 6> characters;
  size_t length;
};

tEscape escapeOf(char character) noexcept {
  constexpr std::string_view kHexadecimal = "0123456789abcdef";
  constexpr std::string_view kShortEscapes = "\bb\tt\nn\ff\rr\"\"\\\\";
  for (size_t i = 0; i < kShortEscapes.size(); i += 2) {
    if (kShortEscapes[i] == character) {
      return {{'\\', kShortEscapes[i + 1]}, 2};
    }
  }
  const auto byte = static_cast<unsigned char>(character);
  if (byte < 32 || byte == 127) {
    return {{'\\', 'u', '0', '0', kHexadecimal[byte >> 4], kHexadecimal[byte & 15]}, 6};
  }
  return {{character}, 1};
}

size_t escapedLength(std::string_view text) noexcept {
  size_t length = 0;
  for (const char c : text) {
    length += escapeOf(c).length;
  }
  return length;
}

char* writeEscaped(char* to, std::string_view text) noexcept {
  for (const char c : text) {
    const tEscape escape = escapeOf(c);
    to = std::copy_n(escape.characters.begin(), escape.length, to);
  }
  return to;
}

char* writeQuoted(char* to, std::string_view text) noexcept {
  *to++ = '"';
  to = writeEscaped(to, text);
  *to++ = '"';
  return to;
}

// Space for a value of a known length, and for its key if the container is an object.
struct tSpace {
  tAppendResult result;
  char* position;
  bool keyed;
};

tSpace makeSpace(char* buffer, uint32_t capacity, std::string_view key,
                 size_t valueLength) noexcept {
  const std::optional<std::string_view> text = textOf(buffer, capacity);
  const std::optional<size_t> closer = text ? findCloser(*text) : std::nullopt;
  if (!closer) {
    return {tAppendResult::unusable, nullptr, false};
  }
  const bool keyed = text->front() == '{';
  const bool comma = text->find_first_not_of(kBlanks, 1) != *closer;
  const size_t needed = valueLength + (keyed ? escapedLength(key) + 3 : 0) + (comma ? 1 : 0);
  const char* const zeros = buffer + text->size() + 1;
  const char* const endOfZeros = std::find_if(
      zeros, static_cast<const char*>(buffer) + capacity - 1, [](char c) { return c != '\0'; });
  if (static_cast<size_t>(endOfZeros - zeros) < needed) {
    return {tAppendResult::noSpace, nullptr, false};
  }
  char* position = buffer + *closer;
  std::memmove(position + needed, position, text->size() - *closer + 1);
  if (comma) {
    *position++ = ',';
  }
  return {tAppendResult::appended, position, keyed};
}

// Returns the position of the value.
char* writeKey(const tSpace& space, std::string_view key) noexcept {
  if (!space.keyed) {
    return space.position;
  }
  char* to = writeQuoted(space.position, key);
  *to++ = ':';
  return to;
}

// A value that needs no quotes.
tAppendResult appendLiteral(char* buffer, uint32_t capacity, std::string_view key,
                            std::string_view literal) noexcept {
  const tSpace space = makeSpace(buffer, capacity, key, literal.size());
  if (space.result == tAppendResult::appended) {
    literal.copy(writeKey(space, key), literal.size());
  }
  return space.result;
}

// ---- Real numbers: std::to_chars of a double would add 170 KB to the library ----

// A sign, the digits of the largest number, the point and one decimal.
using tRealText = std::array<char, std::numeric_limits<double>::max_exponent10 + 4>;

// The magnitude of a finite number is mantissa * 2^exponent.
struct tMagnitude {
  uint64_t mantissa;
  int exponent;
};

tMagnitude magnitudeOf(double value) noexcept {
  constexpr int kMantissaBits = std::numeric_limits<double>::digits - 1;
  constexpr uint64_t kHiddenBit = uint64_t{1} << kMantissaBits;
  constexpr int kSmallestExponent = std::numeric_limits<double>::min_exponent - 1 - kMantissaBits;
  const uint64_t bits = std::bit_cast<uint64_t>(value);
  const uint64_t stored = bits & (kHiddenBit - 1);
  const auto exponent = static_cast<int>((bits >> kMantissaBits) & 0x7FF);
  if (exponent == 0) {
    return {stored, kSmallestExponent};
  }
  return {stored | kHiddenBit, kSmallestExponent + exponent - 1};
}

// An unsigned integer below 2^1024.
class tLargeInteger {
 public:
  explicit tLargeInteger(const tMagnitude& integer) noexcept {
    const auto shift = static_cast<unsigned>(integer.exponent);
    for (unsigned half = 0; half < 2; ++half) {
      const uint64_t part = (integer.mantissa >> (32 * half) & UINT32_MAX) << (shift % 32);
      limbs_[shift / 32 + half] |= static_cast<uint32_t>(part);
      limbs_[shift / 32 + half + 1] |= static_cast<uint32_t>(part >> 32);
    }
  }

  // Divides by ten and returns the remainder.
  unsigned takeDigit() noexcept {
    uint64_t remainder = 0;
    for (auto limb = limbs_.rbegin(); limb != limbs_.rend(); ++limb) {
      const uint64_t dividend = remainder << 32 | *limb;
      *limb = static_cast<uint32_t>(dividend / 10);
      remainder = dividend % 10;
    }
    return static_cast<unsigned>(remainder);
  }
  [[nodiscard]] bool isZero() const noexcept {
    return std::all_of(limbs_.begin(), limbs_.end(), [](uint32_t limb) { return limb == 0; });
  }

 private:
  // The last one receives no bits: the constructor may write 0 there.
  std::array<uint32_t, std::numeric_limits<double>::max_exponent / 32 + 1> limbs_{};
};

// Ten times the number, rounded to an integer; halfway cases to the even one. The exponent is negative.
uint64_t roundedTenths(const tMagnitude& number) noexcept {
  constexpr int kMaxShift = 63;
  if (-number.exponent > kMaxShift) {
    return 0;  // ten times the mantissa is below 2^57
  }
  const uint64_t scaled = number.mantissa * 10;
  const uint64_t unit = uint64_t{1} << -number.exponent;
  const uint64_t whole = scaled / unit;
  const uint64_t remainder = scaled % unit;
  const bool roundsUp = remainder > unit / 2 || (remainder == unit / 2 && whole % 2 != 0);
  return whole + (roundsUp ? 1 : 0);
}

// Writes from the end of the text; returns the text of the number, with one decimal.
std::string_view writeReal(double value, tRealText& text) noexcept {
  const tMagnitude number = magnitudeOf(value);
  const bool isInteger = number.exponent >= 0;
  const uint64_t tenths = isInteger ? 0 : roundedTenths(number);
  tLargeInteger whole(isInteger ? number : tMagnitude{tenths / 10, 0});
  char* at = text.data() + text.size();
  *--at = static_cast<char>('0' + tenths % 10);
  *--at = '.';
  do {
    *--at = static_cast<char>('0' + whole.takeDigit());
  } while (!whole.isZero());
  if (std::signbit(value)) {
    *--at = '-';
  }
  return {at, text.data() + text.size()};
}

}  // namespace

std::string_view descriptionText(const char* buffer, uint32_t capacity) noexcept {
  if (buffer == nullptr || capacity == 0) {
    return {};
  }
  const size_t length = strnlen(buffer, capacity - 1);
  return length == capacity - 1 ? std::string_view() : std::string_view(buffer, length);
}

void replaceDescription(char* buffer, uint32_t capacity, std::string_view text) noexcept {
  std::memcpy(buffer, text.data(), text.size());
  std::memset(buffer + text.size(), 0, capacity - text.size());
  buffer[capacity - 1] = kDescriptionMarker;
}

void resetDescription(char* buffer, uint32_t capacity) noexcept {
  replaceDescription(buffer, capacity, kEmptyDescription);
}

tAppendResult appendText(char* buffer, uint32_t capacity, std::string_view key,
                         std::string_view value) noexcept {
  const tSpace space = makeSpace(buffer, capacity, key, escapedLength(value) + 2);
  if (space.result == tAppendResult::appended) {
    writeQuoted(writeKey(space, key), value);
  }
  return space.result;
}

tAppendResult appendInteger(char* buffer, uint32_t capacity, std::string_view key,
                            int32_t value) noexcept {
  std::array<char, 11> digits;  // "-2147483648"
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  return appendLiteral(buffer, capacity, key, {digits.data(), end.ptr});
}

tAppendResult appendUnsigned(char* buffer, uint32_t capacity, std::string_view key,
                             uint64_t value) noexcept {
  std::array<char, 20> digits;  // "18446744073709551615"
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  return appendLiteral(buffer, capacity, key, {digits.data(), end.ptr});
}

tAppendResult appendReal(char* buffer, uint32_t capacity, std::string_view key,
                         double value) noexcept {
  if (!std::isfinite(value)) {
    return appendNull(buffer, capacity, key);
  }
  tRealText text;
  return appendLiteral(buffer, capacity, key, writeReal(value, text));
}

tAppendResult appendBoolean(char* buffer, uint32_t capacity, std::string_view key,
                            bool value) noexcept {
  return appendLiteral(buffer, capacity, key, value ? "true" : "false");
}

tAppendResult appendNull(char* buffer, uint32_t capacity, std::string_view key) noexcept {
  return appendLiteral(buffer, capacity, key, "null");
}

}  // namespace zoerr
