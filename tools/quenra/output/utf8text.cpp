#include "tools/quenra/output/utf8text.h"

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

// Longer than need be, half of a surrogate pair, or beyond the last code point.
bool isForbidden(char32_t value, size_t length) noexcept {
  constexpr std::array<char32_t, 5> kSmallest{0, 0, 0x80, 0x800, 0x10000};
  return value < kSmallest[length] || (value >= 0xD800 && value <= 0xDFFF) || value > 0x10FFFF;
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

bool isControl(char32_t value) noexcept {
  return value < 0x20 || (value >= 0x7F && value < 0xA0);
}

std::string escaped(char32_t control) {
  std::array<char, 8> text{};
  std::snprintf(text.data(), text.size(), "\\x%02X", static_cast<unsigned>(control));
  return text.data();
}

std::string rewritten(std::string_view bytes, bool escapeControls) {
  std::string result;
  while (!bytes.empty()) {
    const tCodePoint next = firstCodePoint(bytes);
    if (next.value == kInvalid) {
      result += kReplacement;
    } else if (escapeControls && isControl(next.value)) {
      result += escaped(next.value);
    } else {
      result += bytes.substr(0, next.length);
    }
    bytes.remove_prefix(next.length);
  }
  return result;
}

}  // namespace

std::string validUtf8(std::string_view bytes) {
  return rewritten(bytes, false);
}

std::string printableText(std::string_view bytes) {
  return rewritten(bytes, true);
}

bool isUtf8(std::string_view bytes) {
  return validUtf8(bytes) == bytes;
}

size_t widthOf(std::string_view utf8) noexcept {
  return static_cast<size_t>(std::ranges::count_if(
      utf8, [](char byte) { return !isContinuation(static_cast<uint8_t>(byte)); }));
}

}  // namespace nCommandLine
