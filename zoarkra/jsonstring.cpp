#include "zoarkra/jsonstring.h"

#include <cstddef>
#include <cstdint>

namespace zoark {
namespace {

constexpr uint32_t kHighSurrogates = 0xD800;
constexpr uint32_t kLowSurrogates = 0xDC00;
constexpr uint32_t kAfterSurrogates = 0xE000;
constexpr uint32_t kNoUnit = 0x10000;

// Each escape of one character, followed by that character.
constexpr std::string_view kShortEscapes = "\"\"\\\\//b\bf\fn\nr\rt\t";
constexpr size_t kShortEscape = 2;
constexpr size_t kUnitEscape = 6;

size_t indexOfShortEscape(char letter) noexcept {
  size_t i = 0;
  while (i < kShortEscapes.size() && kShortEscapes[i] != letter) {
    i += 2;
  }
  return i;
}

uint32_t valueOfHexadecimal(char digit) noexcept {
  if (digit >= '0' && digit <= '9') {
    return static_cast<uint32_t>(digit - '0');
  }
  const char lower = static_cast<char>(digit | 0x20);
  return lower >= 'a' && lower <= 'f' ? static_cast<uint32_t>(lower - 'a' + 10) : kNoUnit;
}

// The UTF-16 code unit of an escape with four digits; kNoUnit when `at` is not at such an escape.
uint32_t unitAt(const char* at) noexcept {
  if (at[0] != '\\' || at[1] != 'u') {
    return kNoUnit;
  }
  uint32_t unit = 0;
  for (size_t i = 2; i < kUnitEscape; ++i) {
    const uint32_t digit = valueOfHexadecimal(at[i]);
    if (digit == kNoUnit) {
      return kNoUnit;
    }
    unit = unit * 16 + digit;
  }
  return unit;
}

constexpr bool isHighSurrogate(uint32_t unit) noexcept {
  return unit >= kHighSurrogates && unit < kLowSurrogates;
}

constexpr bool isLowSurrogate(uint32_t unit) noexcept {
  return unit >= kLowSurrogates && unit < kAfterSurrogates;
}

// The bytes of the escape at a backslash; a surrogate pair is one escape. 0 for an invalid one.
size_t lengthOfEscape(const char* at) noexcept {
  if (indexOfShortEscape(at[1]) < kShortEscapes.size()) {
    return kShortEscape;
  }
  const uint32_t unit = unitAt(at);
  if (isHighSurrogate(unit)) {
    return isLowSurrogate(unitAt(at + kUnitEscape)) ? 2 * kUnitEscape : 0;
  }
  return unit == kNoUnit || isLowSurrogate(unit) ? 0 : kUnitEscape;
}

// The bytes of the UTF-8 character at `at`; 0 for bytes that are not one, and for control characters.
// Reads no byte after one that does not continue the character, so none after the NUL.
size_t lengthOfCharacter(const char* at) noexcept {
  const auto isBetween = [at](size_t i, uint8_t lowest, uint8_t highest) {
    const auto byte = static_cast<uint8_t>(at[i]);
    return byte >= lowest && byte <= highest;
  };
  const auto continues = [isBetween](size_t i) { return isBetween(i, 0x80, 0xBF); };
  if (isBetween(0, 0x20, 0x7F)) {
    return 1;
  }
  if (isBetween(0, 0xC2, 0xDF)) {
    return continues(1) ? 2 : 0;
  }
  if (isBetween(0, 0xE0, 0xEF)) {
    const uint8_t lowest = isBetween(0, 0xE0, 0xE0) ? 0xA0 : 0x80;
    const uint8_t highest = isBetween(0, 0xED, 0xED) ? 0x9F : 0xBF;
    return isBetween(1, lowest, highest) && continues(2) ? 3 : 0;
  }
  if (isBetween(0, 0xF0, 0xF4)) {
    const uint8_t lowest = isBetween(0, 0xF0, 0xF0) ? 0x90 : 0x80;
    const uint8_t highest = isBetween(0, 0xF4, 0xF4) ? 0x8F : 0xBF;
    return isBetween(1, lowest, highest) && continues(2) && continues(3) ? 4 : 0;
  }
  return 0;
}

void appendCharacter(std::pmr::string& to, uint32_t codePoint) {
  const auto appendByte = [&to](uint32_t byte) { to.push_back(static_cast<char>(byte)); };
  const auto appendRest = [&](uint32_t shift) { appendByte(0x80 | (codePoint >> shift & 0x3F)); };
  if (codePoint < 0x80) {
    appendByte(codePoint);
  } else if (codePoint < 0x800) {
    appendByte(0xC0 | codePoint >> 6);
    appendRest(0);
  } else if (codePoint < 0x10000) {
    appendByte(0xE0 | codePoint >> 12);
    appendRest(6);
    appendRest(0);
  } else {
    appendByte(0xF0 | codePoint >> 18);
    appendRest(12);
    appendRest(6);
    appendRest(0);
  }
}

void appendEscape(std::pmr::string& to, const char* at, size_t length) {
  if (length == kShortEscape) {
    to.push_back(kShortEscapes[indexOfShortEscape(at[1]) + 1]);
    return;
  }
  uint32_t codePoint = unitAt(at);
  if (length != kUnitEscape) {
    codePoint = 0x10000 + ((codePoint - kHighSurrogates) << 10) +
                (unitAt(at + kUnitEscape) - kLowSurrogates);
  }
  appendCharacter(to, codePoint);
}

}  // namespace

tStringScan scanString(const char* text) noexcept {
  const char* at = text;
  bool hasEscapes = false;
  while (*at != '"') {
    const bool isEscape = *at == '\\';
    const size_t length = isEscape ? lengthOfEscape(at) : lengthOfCharacter(at);
    if (length == 0) {
      return {at, false, hasEscapes};
    }
    hasEscapes |= isEscape;
    at += length;
  }
  return {at, true, hasEscapes};
}

void decodeString(std::string_view raw, std::pmr::string& decoded) {
  decoded.clear();
  // No escape is shorter than its character.
  decoded.reserve(raw.size());
  for (size_t i = 0; i < raw.size();) {
    const char* const at = raw.data() + i;
    if (*at == '\\') {
      const size_t length = lengthOfEscape(at);
      appendEscape(decoded, at, length);
      i += length;
    } else {
      decoded.push_back(*at);
      ++i;
    }
  }
}

}  // namespace zoark
