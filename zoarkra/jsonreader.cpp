#include "zoarkra/jsonreader.h"

#include <rapidjson/reader.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory_resource>
#include <string>
#include <system_error>

#include "zoarkra/memory.h"

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

// A document that ends with a NUL, for RapidJSON; that library's own stream reads past the NUL when the
// text ends within a character of several bytes. The names are RapidJSON's.
//
// RapidJSON refuses numbers beyond the range of a double, and judges digits and exponent apart. The
// stream therefore presents every number as the digit 0, and keeps the number itself. After a number
// that breaks the grammar it ends.
class tDocumentStream {
 public:
  using Ch = char;

  explicit tDocumentStream(const char* text) noexcept : text_(text), at_(text) {}

  // NOLINTBEGIN(readability-identifier-naming)
  [[nodiscard]] char Peek() const noexcept {
    return isNumberBroken_ ? '\0' : isAtNumber() ? '0' : *at_;
  }
  char Take() noexcept {
    const char taken = Peek();
    if (taken == '\0') {
      return taken;
    }
    if (isAtNumber()) {
      takeNumber();
    } else {
      trackString(taken);
      ++at_;
    }
    return taken;
  }
  [[nodiscard]] size_t Tell() const noexcept { return offsetOf(at_); }
  // Of a stream that is changed in place; this one is not.
  static char* PutBegin() noexcept { return nullptr; }
  static void Put(char) noexcept {}
  static size_t PutEnd(char*) noexcept { return 0; }
  // NOLINTEND(readability-identifier-naming)

  [[nodiscard]] const char* at(size_t offset) const noexcept { return text_ + offset; }
  [[nodiscard]] size_t offsetOf(const char* position) const noexcept {
    return static_cast<size_t>(position - text_);
  }
  // The latest number.
  [[nodiscard]] std::string_view number() const noexcept { return number_; }
  // True if that number breaks the grammar, at the current position.
  [[nodiscard]] bool isNumberBroken() const noexcept { return isNumberBroken_; }
  // The first character of the latest string, as it stands in the document.
  [[nodiscard]] const char* string() const noexcept { return string_; }
  [[nodiscard]] bool isInString() const noexcept { return isInString_; }
  [[nodiscard]] const char* position() const noexcept { return at_; }

 private:
  [[nodiscard]] bool isAtNumber() const noexcept {
    return !isInString_ && (*at_ == '-' || (*at_ >= '0' && *at_ <= '9'));
  }
  void takeNumber() noexcept {
    const tNumberScan scan = scanNumber(at_);
    number_ = {at_, static_cast<size_t>(scan.end - at_)};
    at_ = scan.end;
    const bool goesOn = *at_ == '.' || *at_ == 'e' || *at_ == 'E' || isAtNumber();
    isNumberBroken_ = !scan.isSound || goesOn;
  }
  void trackString(char taken) noexcept {
    if (isEscaped_) {
      isEscaped_ = false;
    } else if (taken == '\\') {
      isEscaped_ = isInString_;
    } else if (taken == '"') {
      isInString_ = !isInString_;
      string_ = isInString_ ? at_ + 1 : string_;
    }
  }

  const char* text_;
  const char* at_;
  bool isInString_ = false;
  bool isEscaped_ = false;
  bool isNumberBroken_ = false;
  const char* string_ = nullptr;
  std::string_view number_;
};

// RapidJSON refuses bytes that are not UTF-8, but decodes the escape of a lone low surrogate to such.
bool isUtf8(std::string_view decoded) noexcept {
  for (size_t i = 0; i + 1 < decoded.size(); ++i) {
    if (decoded[i] == '\xED' && static_cast<unsigned char>(decoded[i + 1]) >= 0xA0) {
      return false;
    }
  }
  return true;
}

// The first escape of a lone low surrogate in a part of a string that is valid but for such escapes, or
// the end of that part.
const char* findLoneSurrogate(const char* string, const char* end) noexcept {
  constexpr size_t kShortEscape = 2;
  constexpr size_t kUnitEscape = 6;  // of one UTF-16 code unit
  const auto isSurrogate = [](const char* escape) {
    return escape[1] == 'u' && (escape[2] | 0x20) == 'd' && escape[3] >= '8';
  };
  const auto isLow = [](const char* escape) {
    return escape[3] > '9' && (escape[3] | 0x20) >= 'c';
  };
  const char* at = string;
  while (at < end) {
    if (*at != '\\') {
      ++at;
    } else if (!isSurrogate(at)) {
      at += at[1] == 'u' ? kUnitEscape : kShortEscape;
    } else if (isLow(at)) {
      return at;
    } else {
      at += 2 * kUnitEscape;
    }
  }
  return end;
}

// From RapidJSON's events to those of a handler. The names are RapidJSON's.
class tEvents {
 public:
  tEvents(tDocumentStream& stream, iJsonHandler& handler) noexcept
      : stream_(stream), handler_(handler) {}

  // The result of a reading that ended with an error at `offset`.
  [[nodiscard]] tJsonResult resultOfError(size_t offset) const noexcept {
    const char* fault = fault_ == nullptr ? stream_.at(offset) : fault_;
    if (stream_.isInString()) {
      fault = findLoneSurrogate(stream_.string(), fault);
    }
    return {outcome_, stream_.offsetOf(fault)};
  }

  // NOLINTBEGIN(readability-identifier-naming)
  bool Null() { return value({.type = tJsonType::null}); }
  bool Bool(bool boolean) { return value({.type = tJsonType::boolean, .boolean = boolean}); }
  bool Uint(unsigned) {
    return stream_.isNumberBroken()
               ? fail(stream_.position())
               : value({.type = tJsonType::number, .number = valueOfNumber(stream_.number())});
  }
  // The reader requires these. Every number arrives as the digit 0, so it calls none of them.
  // GCOVR_EXCL_START
  bool Int(int) { return false; }
  bool Int64(int64_t) { return false; }
  bool Uint64(uint64_t) { return false; }
  bool Double(double) { return false; }
  bool RawNumber(const char*, rapidjson::SizeType, bool) { return false; }
  // GCOVR_EXCL_STOP
  bool String(const char* text, rapidjson::SizeType length, bool) {
    return isUtf8({text, length}) ? value({.type = tJsonType::string, .text = {text, length}})
                                  : fail(findLoneSurrogate(stream_.string(), stream_.position()));
  }
  bool Key(const char* text, rapidjson::SizeType length, bool) {
    key_.assign(text, length);
    return isUtf8(key_) ? handler_.key(key_, depth_) || end()
                        : fail(findLoneSurrogate(stream_.string(), stream_.position()));
  }
  bool StartObject() { return start(tJsonType::object); }
  bool EndObject(rapidjson::SizeType) { return leave(); }
  bool StartArray() { return start(tJsonType::array); }
  bool EndArray(rapidjson::SizeType) { return leave(); }
  // NOLINTEND(readability-identifier-naming)

 private:
  // The document is malformed at a position that RapidJSON does not report.
  bool fail(const char* fault) noexcept {
    fault_ = fault;
    return false;
  }
  bool end() noexcept {
    outcome_ = tJsonOutcome::ended;
    return false;
  }
  bool value(const tJsonValue& value) { return handler_.value(value, depth_) || end(); }
  bool start(tJsonType type) {
    if (depth_ == kMaxJsonDepth) {
      outcome_ = tJsonOutcome::tooDeep;
      return false;
    }
    return value({.type = type}) && ++depth_ != 0;
  }
  bool leave() { return handler_.end(--depth_) || end(); }

  tDocumentStream& stream_;
  iJsonHandler& handler_;
  size_t depth_ = 0;
  tJsonOutcome outcome_ = tJsonOutcome::malformed;
  const char* fault_ = nullptr;
  // Keys stay until the next key. Memory for those of a document of 4 KiB, each of which may outgrow
  // its buffer, which is not freed.
  tStackMemory<size_t{9} * 1024> memory_;
  std::pmr::string key_{memory_.resource()};
};

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

const char* nameOf(tJsonType type) noexcept {
  switch (type) {
    case tJsonType::null:
      return "null";
    case tJsonType::boolean:
      return "bool";
    case tJsonType::number:
      return "number";
    case tJsonType::string:
      return "string";
    case tJsonType::object:
      return "object";
    case tJsonType::array:
      break;
  }
  return "array";
}

tJsonResult readJson(const char* document, iJsonHandler& handler) {
  if (strnlen(document, kMaxJsonSize + 1) > kMaxJsonSize) {
    return {tJsonOutcome::tooLarge, kMaxJsonSize};
  }
  constexpr unsigned kFlags =
      rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag;
  // For a text of 4 KiB, and RapidJSON's notes of the deepest nesting.
  using tMemory = tJsonMemory<size_t{5} * 1024>;
  tMemory memory;
  rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, tMemory> reader(
      &memory, tMemory::kOwnBytes);
  tDocumentStream stream(document);
  tEvents events(stream, handler);
  const rapidjson::ParseResult result = reader.Parse<kFlags>(stream, events);
  return result.IsError() ? events.resultOfError(result.Offset())
                          : tJsonResult{tJsonOutcome::read, stream.Tell()};
}

}  // namespace zoark
