#include "zoarkra/jsonreader.h"

#include <rapidjson/reader.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>
#include <system_error>

#include "zoarkra/jsonmemory.h"

namespace zoark {
namespace {

// The reader refuses bytes that are no UTF-8, but decodes an escape of half a surrogate pair to
// such.
bool isSound(std::string_view text) noexcept {
  for (size_t i = 0; i + 1 < text.size(); ++i) {
    if (text[i] == '\xED' && static_cast<unsigned char>(text[i + 1]) >= 0xA0) {
      return false;
    }
  }
  return true;
}

// Whether a number lies between -1 and 1, told from its text: for one that a double cannot hold.
bool isTiny(std::string_view text) noexcept {
  const size_t endOfDigits = std::min(text.find_first_of("eE"), text.size());
  const std::string_view digits = text.substr(0, endOfDigits);
  const size_t point = std::min(digits.find('.'), digits.size());
  const size_t first = std::min(digits.find_first_of("123456789"), digits.size());
  std::string_view exponentText = text.substr(std::min(endOfDigits + 1, text.size()));
  exponentText.remove_prefix(exponentText.starts_with('+') ? 1 : 0);
  // One with more digits is negative: the reader has refused others.
  int64_t exponent = exponentText.empty() ? 0 : std::numeric_limits<int32_t>::min();
  std::from_chars(exponentText.data(), exponentText.data() + exponentText.size(), exponent);
  return static_cast<int64_t>(point) - static_cast<int64_t>(first) + exponent < 0;
}

// The value of a number's text, whatever the process's locale. One that a double cannot hold
// becomes infinite, or 0 when it is too small.
double numberOf(std::string_view text) noexcept {
  double number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  if (result.ec == std::errc::result_out_of_range) {
    number = isTiny(text) ? 0 : std::numeric_limits<double>::infinity();
  }
  return number;
}

// A text that ends at its NUL. RapidJSON's own stream goes on behind it when the text ends within a
// character of several bytes. The names are RapidJSON's.
class tDocumentStream {
 public:
  using Ch = char;

  explicit tDocumentStream(const char* text) noexcept : text_(text), at_(text) {}

  // NOLINTBEGIN(readability-identifier-naming)
  [[nodiscard]] char Peek() const noexcept { return *at_; }
  char Take() noexcept { return *at_ == '\0' ? '\0' : *at_++; }
  [[nodiscard]] size_t Tell() const noexcept { return static_cast<size_t>(at_ - text_); }
  // Only a stream that is changed in its place has more.
  static char* PutBegin() noexcept { return nullptr; }
  static void Put(char) noexcept {}
  static size_t PutEnd(char*) noexcept { return 0; }
  // NOLINTEND(readability-identifier-naming)

 private:
  const char* text_;
  const char* at_;
};

// From the reader's events to those of a handler. The names are the reader's.
class tEvents {
 public:
  explicit tEvents(iJsonHandler& handler) noexcept : handler_(handler) {}

  // Why the reading has been ended from here.
  [[nodiscard]] tJsonOutcome outcome() const noexcept { return outcome_; }

  // NOLINTBEGIN(readability-identifier-naming)
  bool Null() { return value({.type = tJsonType::null}); }
  bool Bool(bool boolean) { return value({.type = tJsonType::boolean, .boolean = boolean}); }
  bool RawNumber(const char* text, rapidjson::SizeType length, bool) {
    return value({.type = tJsonType::number, .number = numberOf({text, length})});
  }
  // Numbers come as their texts: the reader's own arithmetic is undefined for some of them.
  bool Int(int) { return false; }
  bool Uint(unsigned) { return false; }
  bool Int64(int64_t) { return false; }
  bool Uint64(uint64_t) { return false; }
  bool Double(double) { return false; }
  bool String(const char* text, rapidjson::SizeType length, bool) {
    return isSound({text, length}) && value({.type = tJsonType::string, .text = {text, length}});
  }
  bool Key(const char* text, rapidjson::SizeType length, bool) {
    return isSound({text, length}) && (handler_.key({text, length}, depth_) || end());
  }
  bool StartObject() { return start(tJsonType::object); }
  bool EndObject(rapidjson::SizeType) { return leave(); }
  bool StartArray() { return start(tJsonType::array); }
  bool EndArray(rapidjson::SizeType) { return leave(); }
  // NOLINTEND(readability-identifier-naming)

 private:
  bool end() noexcept {
    outcome_ = tJsonOutcome::ended;
    return false;
  }
  bool value(const tJsonValue& value) { return handler_.value(value, depth_) || end(); }
  bool start(tJsonType type) {
    if (depth_ == kDeepestJson) {
      outcome_ = tJsonOutcome::tooDeep;
      return false;
    }
    return value({.type = type}) && ++depth_ != 0;
  }
  bool leave() { return handler_.end(--depth_) || end(); }

  iJsonHandler& handler_;
  size_t depth_ = 0;
  tJsonOutcome outcome_ = tJsonOutcome::malformed;
};

}  // namespace

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
  if (strnlen(document, kLargestJson + 1) > kLargestJson) {
    return {tJsonOutcome::tooLarge, kLargestJson};
  }
  constexpr unsigned kFlags = rapidjson::kParseIterativeFlag |
                              rapidjson::kParseValidateEncodingFlag |
                              rapidjson::kParseNumbersAsStringsFlag;
  // For a text of 4 KiB, and what the reader notes of the deepest nesting.
  using tMemory = tJsonMemory<size_t{5} * 1024>;
  tMemory memory;
  rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, tMemory> reader(
      &memory, tMemory::kOwnBytes);
  tDocumentStream stream(document);
  tEvents events(handler);
  const rapidjson::ParseResult result = reader.Parse<kFlags>(stream, events);
  if (!result.IsError()) {
    return {tJsonOutcome::read, stream.Tell()};
  }
  const bool isLargeNumber = result.Code() == rapidjson::kParseErrorNumberTooBig;
  return {isLargeNumber ? tJsonOutcome::numberTooLarge : events.outcome(), result.Offset()};
}

}  // namespace zoark
