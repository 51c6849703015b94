#include "zoarkra/jsonreader.h"

#include <array>
#include <cstring>
#include <memory_resource>
#include <string>
#include <utility>

#include "zoarkra/jsonnumber.h"
#include "zoarkra/jsonstring.h"
#include "zoarkra/tstackmemory.h"

namespace zoark {
namespace {

// Reads one document, which ends with a NUL. The reader is the library's own because that of RapidJSON
// refuses numbers beyond a double even where it delivers their texts, and accepts half a surrogate
// pair.
class tJsonReader {
 public:
  tJsonReader(const char* document, iJsonHandler& handler) noexcept
      : document_(document), at_(document), handler_(handler) {}

  tJsonResult read() {
    bool isSound = readValue();
    while (isSound && depth_ != 0) {
      isSound = readNext();
    }
    if (isSound) {
      readEnd();
    }
    return {outcome_, static_cast<size_t>(at_ - document_)};
  }

 private:
  // Ends the reading at the current position.
  bool stop(tJsonOutcome outcome) noexcept {
    outcome_ = outcome;
    return false;
  }

  void skipBlanks() noexcept {
    while (*at_ == ' ' || *at_ == '\t' || *at_ == '\n' || *at_ == '\r') {
      ++at_;
    }
  }

  bool accept(char character) noexcept {
    skipBlanks();
    if (*at_ != character) {
      return stop(tJsonOutcome::malformed);
    }
    ++at_;
    return true;
  }

  void readEnd() noexcept {
    skipBlanks();
    if (*at_ != '\0') {
      outcome_ = tJsonOutcome::malformed;
    }
  }

  // Reads the next element or member of the innermost container, or its end.
  bool readNext() {
    const bool isObject = isObject_[depth_ - 1];
    const bool isFirst = std::exchange(isEmpty_, false);
    skipBlanks();
    if (*at_ == (isObject ? '}' : ']')) {
      ++at_;
      --depth_;
      return handler_.end(depth_) || stop(tJsonOutcome::ended);
    }
    return (isFirst || accept(',')) && (!isObject || (readKey() && accept(':'))) && readValue();
  }

  bool readKey() {
    std::string_view key;
    return readString(key, decodedKey_) && (handler_.key(key, depth_) || stop(tJsonOutcome::ended));
  }

  bool readValue() {
    skipBlanks();
    switch (*at_) {
      case '{':
        return readStart(tJsonType::object);
      case '[':
        return readStart(tJsonType::array);
      case '"':
        return readText();
      case 't':
        return readLiteral("true", {.type = tJsonType::boolean, .boolean = true});
      case 'f':
        return readLiteral("false", {.type = tJsonType::boolean});
      case 'n':
        return readLiteral("null", {.type = tJsonType::null});
      default:
        return readNumber();
    }
  }

  bool deliver(const tJsonValue& value) {
    return handler_.value(value, depth_) || stop(tJsonOutcome::ended);
  }

  bool readStart(tJsonType type) {
    if (depth_ == kMaxJsonDepth) {
      return stop(tJsonOutcome::tooDeep);
    }
    ++at_;
    if (!deliver({.type = type})) {
      return false;
    }
    isObject_[depth_] = type == tJsonType::object;
    ++depth_;
    isEmpty_ = true;
    return true;
  }

  bool readText() {
    std::string_view text;
    return readString(text, decodedText_) && deliver({.type = tJsonType::string, .text = text});
  }

  // `text` is a part of the document, or of `decoded` where it has escapes.
  bool readString(std::string_view& text, std::pmr::string& decoded) {
    if (!accept('"')) {
      return false;
    }
    const tStringScan scan = scanString(at_);
    text = {at_, static_cast<size_t>(scan.end - at_)};
    at_ = scan.end;
    if (!scan.isSound) {
      return stop(tJsonOutcome::malformed);
    }
    ++at_;
    if (scan.hasEscapes) {
      decodeString(text, decoded);
      text = decoded;
    }
    return true;
  }

  bool readLiteral(const char* literal, const tJsonValue& value) {
    for (; *literal != '\0'; ++literal, ++at_) {
      if (*at_ != *literal) {
        return stop(tJsonOutcome::malformed);
      }
    }
    return deliver(value);
  }

  bool readNumber() {
    const char* const begin = at_;
    const tNumberScan scan = scanNumber(begin);
    at_ = scan.end;
    if (!scan.isSound) {
      return stop(tJsonOutcome::malformed);
    }
    const double number = valueOfNumber({begin, static_cast<size_t>(at_ - begin)});
    return deliver({.type = tJsonType::number, .number = number});
  }

  const char* document_;
  const char* at_;
  iJsonHandler& handler_;
  tJsonOutcome outcome_ = tJsonOutcome::read;
  std::array<bool, kMaxJsonDepth> isObject_{};  // of each container around the current position
  size_t depth_ = 0;
  bool isEmpty_ = false;  // nothing of the innermost container is read yet
  // For the strings of a text of 4 KiB, each of which may outgrow its buffer, which is not freed.
  tStackMemory<size_t{9} * 1024> memory_;
  std::pmr::string decodedKey_{memory_.resource()};
  std::pmr::string decodedText_{memory_.resource()};
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
  if (strnlen(document, kMaxJsonSize + 1) > kMaxJsonSize) {
    return {tJsonOutcome::tooLarge, kMaxJsonSize};
  }
  return tJsonReader(document, handler).read();
}

}  // namespace zoark
