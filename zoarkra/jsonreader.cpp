#include "zoarkra/jsonreader.h"

#include <rapidjson/reader.h>

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

// From the reader's events to those of a handler. The names are the reader's.
class tEvents {
 public:
  explicit tEvents(iJsonHandler& handler) noexcept : handler_(handler) {}

  // Why the reading has been ended from here.
  [[nodiscard]] tJsonOutcome outcome() const noexcept { return outcome_; }

  // NOLINTBEGIN(readability-identifier-naming)
  bool Null() { return value({.type = tJsonType::null}); }
  bool Bool(bool boolean) { return value({.type = tJsonType::boolean, .boolean = boolean}); }
  bool Int(int number) { return Double(number); }
  bool Uint(unsigned number) { return Double(number); }
  bool Int64(int64_t number) { return Double(static_cast<double>(number)); }
  bool Uint64(uint64_t number) { return Double(static_cast<double>(number)); }
  bool Double(double number) { return value({.type = tJsonType::number, .number = number}); }
  bool RawNumber(const char*, rapidjson::SizeType, bool) { return false; }
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
  constexpr unsigned kFlags = rapidjson::kParseIterativeFlag |
                              rapidjson::kParseValidateEncodingFlag |
                              rapidjson::kParseFullPrecisionFlag;
  // For a text of 4 KiB, and what the reader notes of the deepest nesting.
  using tMemory = tJsonMemory<5 * 1024>;
  tMemory memory;
  rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, tMemory> reader(
      &memory, tMemory::kOwnBytes);
  rapidjson::StringStream stream(document);
  tEvents events(handler);
  const rapidjson::ParseResult result = reader.Parse<kFlags>(stream, events);
  if (!result.IsError()) {
    return {tJsonOutcome::read, stream.Tell()};
  }
  const bool tooLarge = result.Code() == rapidjson::kParseErrorNumberTooBig;
  return {tooLarge ? tJsonOutcome::numberTooLarge : events.outcome(), result.Offset()};
}

}  // namespace zoark
