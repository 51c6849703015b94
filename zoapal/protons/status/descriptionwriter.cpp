#include "zoapal/protons/status/descriptionwriter.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

namespace zoerr {
namespace {

constexpr bool isBlank(char c) noexcept {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

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

bool isEmptyContainer(std::string_view text) noexcept {
  const auto next = std::find_if_not(text.begin() + 1, text.end(), isBlank);
  return next != text.end() && *next == closerOf(text.front());
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
  const bool comma = !isEmptyContainer(*text);
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
  // A sign, the digits of the largest number, the point and one decimal.
  std::array<char, std::numeric_limits<double>::max_exponent10 + 4> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                 std::chars_format::fixed, 1);
  return appendLiteral(buffer, capacity, key, {digits.data(), end.ptr});
}

tAppendResult appendBoolean(char* buffer, uint32_t capacity, std::string_view key,
                            bool value) noexcept {
  return appendLiteral(buffer, capacity, key, value ? "true" : "false");
}

tAppendResult appendNull(char* buffer, uint32_t capacity, std::string_view key) noexcept {
  return appendLiteral(buffer, capacity, key, "null");
}

}  // namespace zoerr
