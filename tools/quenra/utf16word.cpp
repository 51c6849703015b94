#include "tools/quenra/utf16word.h"

namespace nCommandLine {
namespace {

constexpr bool isHighSurrogate(char32_t unit) noexcept {
  return unit >= 0xD800 && unit < 0xDC00;
}
constexpr bool isLowSurrogate(char32_t unit) noexcept {
  return unit >= 0xDC00 && unit < 0xE000;
}

// The code point, or unpaired surrogate, at the beginning of `word`, which must not be empty.
char32_t takeFirst(std::u16string_view& word) noexcept {
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

std::string utf8Word(std::u16string_view word) {
  std::string text;
  while (!word.empty()) {
    append(text, takeFirst(word));
  }
  return text;
}

}  // namespace nCommandLine
