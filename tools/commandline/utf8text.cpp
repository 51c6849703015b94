#include "tools/commandline/utf8text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>

namespace nCommandLine {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
constexpr char32_t kInvalid = 0xFFFFFFFF;

struct tCodePoint {
  char32_t value;  // kInvalid: not UTF-8
  size_t length;   // in bytes, at least 1
};

uint8_t byteAt(std::string_view bytes, size_t position) {
  return static_cast<uint8_t>(bytes[position]);
}
bool isContinuation(uint8_t byte) noexcept {
  return (byte & 0xC0) == 0x80;
}

size_t sequenceLength(uint8_t lead) noexcept {
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead < 0xE0) return 2;
  if (lead >= 0xE0 && lead < 0xF0) return 3;
  if (lead >= 0xF0 && lead < 0xF5) return 4;
  return 0;
}

// An overlong encoding, half of a surrogate pair, or a value beyond the last code point.
bool isForbidden(char32_t value, size_t length) noexcept {
  constexpr std::array<char32_t, 5> kMinValues{0, 0, 0x80, 0x800, 0x10000};
  return value < kMinValues[length] || (value >= 0xD800 && value <= 0xDFFF) || value > 0x10FFFF;
}

// The code point at the beginning of `bytes`, which is not empty.
tCodePoint firstCodePoint(std::string_view bytes) {
  const uint8_t lead = byteAt(bytes, 0);
  const size_t length = sequenceLength(lead);
  if (length == 1) {
    return {lead, 1};
  }
  if (length == 0 || length > bytes.size()) {
    return {kInvalid, 1};
  }
  auto value = static_cast<char32_t>(lead & (0x7F >> length));
  for (size_t i = 1; i < length; ++i) {
    if (!isContinuation(byteAt(bytes, i))) {
      return {kInvalid, 1};
    }
    value = value << 6 | (byteAt(bytes, i) & 0x3F);
  }
  return isForbidden(value, length) ? tCodePoint{kInvalid, 1} : tCodePoint{value, length};
}

struct tRange {
  char32_t first;
  char32_t last;
};

// Control characters, and other characters that end or rearrange a line.
constexpr tRange kUnsafe[] = {
    {0x00, 0x1F},     {0x7F, 0x9F}, {0x061C, 0x061C},  // Arabic letter mark
    {0x200E, 0x200F},                                  // left-to-right and right-to-left mark
    {0x2028, 0x2029},                                  // line and paragraph separator
    {0x202A, 0x202E},                                  // embeddings and overrides of the direction
    {0x2066, 0x2069},                                  // isolates
    {0xFEFF, 0xFEFF},                                  // byte order mark
};

bool isUnsafe(char32_t value) noexcept {
  return std::ranges::any_of(kUnsafe, [value](const tRange& range) {
    return value >= range.first && value <= range.last;
  });
}

std::string hexadecimal(const char* format, char32_t value) {
  std::array<char, 8> text{};
  std::snprintf(text.data(), text.size(), format, static_cast<unsigned>(value));
  return text.data();
}

std::string escaped(char32_t value) {
  return hexadecimal(value < 0x100 ? "\\x%02X" : "\\u%04X", value);
}

std::string escapedForJson(char32_t value) {
  constexpr std::string_view kWithLetter = "\b\t\n\f\r";
  constexpr std::string_view kLetters = "btnfr";
  const size_t letter =
      value < 0x20 ? kWithLetter.find(static_cast<char>(value)) : std::string::npos;
  return letter == std::string::npos ? hexadecimal("\\u%04X", value)
                                     : std::string("\\") + kLetters[letter];
}

// Calls `rewrite` with each code point and its bytes.
template <class Rewrite>
std::string rewritten(std::string_view bytes, Rewrite rewrite) {
  std::string result;
  while (!bytes.empty()) {
    const tCodePoint next = firstCodePoint(bytes);
    result += next.value == kInvalid ? std::string(kReplacement)
                                     : rewrite(next.value, bytes.substr(0, next.length));
    bytes.remove_prefix(next.length);
  }
  return result;
}

constexpr bool isHighSurrogate(char32_t unit) noexcept {
  return unit >= 0xD800 && unit < 0xDC00;
}
constexpr bool isLowSurrogate(char32_t unit) noexcept {
  return unit >= 0xDC00 && unit < 0xE000;
}

// The code point, or unpaired surrogate, at the beginning of `word`, which must not be empty.
char32_t popFirst(std::u16string_view& word) noexcept {
  const char32_t first = word.front();
  word.remove_prefix(1);
  if (!isHighSurrogate(first) || word.empty() || !isLowSurrogate(word.front())) {
    return first;
  }
  const char32_t second = word.front();
  word.remove_prefix(1);
  return 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
}

void appendContinuation(std::string& text, char32_t bits) {
  text += static_cast<char>(0x80 | (bits & 0x3F));
}

void append(std::string& text, char32_t point) {
  if (point < 0x80) {
    text += static_cast<char>(point);
  } else if (point < 0x800) {
    text += static_cast<char>(0xC0 | point >> 6);
    appendContinuation(text, point);
  } else if (point < 0x10000) {
    text += static_cast<char>(0xE0 | point >> 12);
    appendContinuation(text, point >> 6);
    appendContinuation(text, point);
  } else {
    text += static_cast<char>(0xF0 | point >> 18);
    appendContinuation(text, point >> 12);
    appendContinuation(text, point >> 6);
    appendContinuation(text, point);
  }
}

}  // namespace

std::string validUtf8(std::string_view bytes) {
  return rewritten(bytes, [](char32_t, std::string_view same) { return std::string(same); });
}

std::string printableText(std::string_view bytes) {
  return rewritten(bytes, [](char32_t value, std::string_view same) {
    return isUnsafe(value) ? escaped(value) : std::string(same);
  });
}

std::string jsonText(std::string_view bytes) {
  return '"' +
         rewritten(bytes,
                   [](char32_t value, std::string_view same) {
                     if (value == '"' || value == '\\') {
                       return "\\" + std::string(same);
                     }
                     return isUnsafe(value) ? escapedForJson(value) : std::string(same);
                   }) +
         '"';
}

bool isUtf8(std::string_view bytes) {
  return validUtf8(bytes) == bytes;
}

size_t widthOf(std::string_view utf8) noexcept {
  return static_cast<size_t>(std::ranges::count_if(
      utf8, [](char byte) { return !isContinuation(static_cast<uint8_t>(byte)); }));
}

std::string utf8Word(std::u16string_view word) {
  std::string text;
  while (!word.empty()) {
    append(text, popFirst(word));
  }
  return text;
}

}  // namespace nCommandLine
