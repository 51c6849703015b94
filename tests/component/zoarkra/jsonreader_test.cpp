// The events of the JSON reader, the values of numbers and strings, and the offset of each fault.
#include "zoarkra/jsonreader.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace nTests {
namespace {

using zoark::kMaxJsonDepth;
using zoark::kMaxJsonSize;
using zoark::readJson;
using zoark::tJsonOutcome;
using zoark::tJsonResult;
using zoark::tJsonType;
using zoark::tJsonValue;

// Records each event as text: "type" or "type:content", "key:" and "end", each with its depth.
class tEventList final : public zoark::iJsonHandler {
 public:
  bool value(const tJsonValue& value, size_t depth) override {
    values.push_back(value);
    text = value.type == tJsonType::string ? std::string(value.text) : text;
    std::string event = nameOf(value.type);
    event += value.type == tJsonType::string    ? ":" + std::string(value.text)
             : value.type == tJsonType::boolean ? (value.boolean ? ":true" : ":false")
                                                : "";
    return record(event, depth);
  }
  bool key(std::string_view key, size_t depth) override {
    return record("key:" + std::string(key), depth);
  }
  bool end(size_t depth) override { return record("end", depth); }

  std::string events;
  std::vector<tJsonValue> values;
  std::string text;             // of the last string
  std::string endsAt = "none";  // the event that ends the reading

 private:
  bool record(const std::string& event, size_t depth) {
    events += event + "@" + std::to_string(depth) + " ";
    return event != endsAt;
  }
};

// A copy of exactly the document's size, so that the address sanitizer reports a read past its end.
std::unique_ptr<char[]> exactCopy(const std::string& document) {
  auto copy = std::make_unique<char[]>(document.size() + 1);
  document.copy(copy.get(), document.size());
  return copy;
}

tJsonResult read(const std::string& document, tEventList& events) {
  return readJson(exactCopy(document).get(), events);
}

std::string eventsOf(const std::string& document) {
  tEventList events;
  EXPECT_EQ(read(document, events).outcome, tJsonOutcome::read) << document;
  return events.events;
}

double numberOf(const std::string& document) {
  tEventList events;
  EXPECT_EQ(read(document, events).outcome, tJsonOutcome::read) << document.substr(0, 40);
  return events.values.empty() ? std::nan("") : events.values[0].number;
}

std::string stringOf(const std::string& document) {
  tEventList events;
  EXPECT_EQ(read(document, events).outcome, tJsonOutcome::read) << document;
  return events.text;
}

void expectFault(const std::string& document, size_t offset,
                 tJsonOutcome outcome = tJsonOutcome::malformed) {
  tEventList events;
  const tJsonResult result = read(document, events);
  EXPECT_EQ(result.outcome, outcome) << document.substr(0, 40);
  EXPECT_EQ(result.offset, offset) << document.substr(0, 40);
}

std::string zeros(size_t count) {
  return std::string(count, '0');
}

// ---- Structure ----

TEST(JsonReader, ValuesOfEachType_ArriveInTheirOrder) {
  EXPECT_EQ(eventsOf(R"([null,true,false,1,"x",{},[]])"),
            "array@0 null@1 bool:true@1 bool:false@1 number@1 string:x@1 object@1 end@1 array@1 "
            "end@1 end@0 ");
}

TEST(JsonReader, Members_ArriveAsKeyAndValueOfOneDepth) {
  EXPECT_EQ(eventsOf(R"({"a":1,"b":{"c":[{"d":2}],"e":3},"f":4})"),
            "object@0 key:a@1 number@1 key:b@1 object@1 key:c@2 array@2 object@3 key:d@4 number@4 "
            "end@3 end@2 key:e@2 number@2 end@1 key:f@1 number@1 end@0 ");
}

TEST(JsonReader, SingleValue_IsADocument) {
  EXPECT_EQ(eventsOf(" 1 "), "number@0 ");
  EXPECT_EQ(eventsOf(R"("x")"), "string:x@0 ");
  EXPECT_EQ(eventsOf("null"), "null@0 ");
}

TEST(JsonReader, BlanksBetweenTokens_AreSkipped) {
  EXPECT_EQ(
      eventsOf(
          " \t\r\n[ \t\r\n1 \t\r\n, \t\r\n{ \t\r\n\"a\" \t\r\n: \t\r\n1 \t\r\n} \t\r\n] \t\r\n"),
      eventsOf(R"([1,{"a":1}])"));
}

TEST(JsonReader, DocumentReadToItsEnd_HasTheOffsetOfItsEnd) {
  tEventList events;
  EXPECT_EQ(read("[1] ", events).offset, 4u);
}

TEST(JsonReader, HandlerThatEndsTheReading_ReceivesNothingMore) {
  for (const auto& [endsAt, events] : std::vector<std::pair<std::string, std::string>>{
           {"object", "object@0 "},
           {"key:a", "object@0 key:a@1 "},
           {"array", "object@0 key:a@1 array@1 "},
           {"number", "object@0 key:a@1 array@1 number@2 "},
           {"string:x", "object@0 key:a@1 array@1 number@2 string:x@2 "},
           {"null", "object@0 key:a@1 array@1 number@2 string:x@2 null@2 "},
           {"end", "object@0 key:a@1 array@1 number@2 string:x@2 null@2 end@1 "}}) {
    tEventList list;
    list.endsAt = endsAt;
    EXPECT_EQ(read(R"({"a":[1,"x",null]} and no JSON)", list).outcome, tJsonOutcome::ended);
    EXPECT_EQ(list.events, events);
  }
}

TEST(JsonReader, BrokenStructure_IsMalformedAtTheOffendingByte) {
  expectFault("", 0);
  expectFault("  ", 2);
  expectFault("x", 0);
  expectFault("]", 0);
  expectFault("/**/1", 0);
  expectFault("[", 1);
  expectFault("[}", 1);
  expectFault("[,1]", 1);
  expectFault("[1", 2);
  expectFault("[1 2]", 3);
  expectFault("[1}", 2);
  expectFault("[1,]", 3);
  expectFault("[1,,2]", 3);
  expectFault("[[1]", 4);
  expectFault("[[1],2}", 6);
  expectFault("[1] x", 4);
  expectFault("[1],", 3);
  expectFault("1 2", 2);
  expectFault("[1]\v", 3);
  expectFault("{", 1);
  expectFault("{]", 1);
  expectFault("{1:2}", 1);
  expectFault("{'a':2}", 1);
  expectFault(R"({"a")", 4);
  expectFault(R"({"a" 1})", 5);
  expectFault(R"({"a",1})", 4);
  expectFault(R"({"a":})", 5);
  expectFault(R"({"a":1)", 6);
  expectFault(R"({"a":1,})", 7);
  expectFault(R"({"a":1 "b":2})", 7);
  expectFault(R"({"a":1,2})", 7);
  expectFault(R"({"a":1])", 6);
  expectFault(R"({"a":{}]})", 7);
}

TEST(JsonReader, BrokenLiteral_IsMalformedAtTheFirstWrongLetter) {
  expectFault("nul", 3);
  expectFault("nulL", 3);
  expectFault("[trug]", 4);
  expectFault("falsey", 5);
  expectFault("True", 0);
  expectFault("NaN", 0);
  expectFault("Infinity", 0);
}

TEST(JsonReader, DepthAtTheLimit_IsRead) {
  const std::string opening(kMaxJsonDepth, '[');
  const std::string closing(kMaxJsonDepth, ']');
  tEventList events;
  EXPECT_EQ(read(opening + "1" + closing, events).outcome, tJsonOutcome::read);
  EXPECT_EQ(events.values.size(), kMaxJsonDepth + 1);
}

TEST(JsonReader, DepthBeyondTheLimit_IsTooDeepAtItsBracket) {
  expectFault(std::string(kMaxJsonDepth + 1, '['), kMaxJsonDepth, tJsonOutcome::tooDeep);
  expectFault(std::string(kMaxJsonDepth, '[') + "{", kMaxJsonDepth, tJsonOutcome::tooDeep);
}

TEST(JsonReader, KindOfEachContainer_IsRestoredAtItsEnd) {
  EXPECT_EQ(eventsOf(R"([{"a":[{}]},1])"),
            "array@0 object@1 key:a@2 array@2 object@3 end@3 end@2 end@1 number@1 end@0 ");
}

TEST(JsonReader, SizeAtTheLimit_IsRead) {
  tEventList events;
  EXPECT_EQ(read("1" + std::string(kMaxJsonSize - 1, ' '), events).outcome, tJsonOutcome::read);
}

TEST(JsonReader, SizeBeyondTheLimit_IsTooLargeAndNotRead) {
  tEventList events;
  const tJsonResult result = read("1" + std::string(kMaxJsonSize, ' '), events);
  EXPECT_EQ(result.outcome, tJsonOutcome::tooLarge);
  EXPECT_EQ(result.offset, kMaxJsonSize);
  EXPECT_EQ(events.events, "");
}

// ---- Numbers ----

TEST(JsonNumber, NumberOfEachForm_HasItsValue) {
  const std::vector<std::pair<std::string, double>> numbers{
      {"0", 0},
      {"-0", 0},
      {"7", 7},
      {"-7", -7},
      {"10", 10},
      {"100200", 100200},
      {"4294967295", 4294967295.0},
      {"0.5", 0.5},
      {"-0.25", -0.25},
      {"0.0625", 0.0625},
      {"10.0", 10},
      {"12.5e1", 125},
      {"12.5E+1", 125},
      {"125e-2", 1.25},
      {"1e007", 1e7},
      {"0.001e3", 1},
      {"123456789.125", 123456789.125},
      {"1.7976931348623157e308", std::numeric_limits<double>::max()},
      {"-1.7976931348623157e308", std::numeric_limits<double>::lowest()},
      {"2.2250738585072014e-308", std::numeric_limits<double>::min()},
      {"5e-324", std::numeric_limits<double>::denorm_min()}};
  for (const auto& [text, value] : numbers) {
    EXPECT_EQ(numberOf(text), value) << text;
  }
}

TEST(JsonNumber, NumberBeyondADouble_IsInfinite) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  for (const std::string& text :
       {std::string("1e999"), std::string("1.8e308"), std::string("1e99999999999999999999"),
        "1" + zeros(309), "1" + zeros(400), "0." + zeros(400) + "1e800",
        "1" + zeros(70000) + "e-60000", std::string("1e9223372036854775807")}) {
    EXPECT_EQ(numberOf(text), kInfinity) << text.substr(0, 40);
    EXPECT_EQ(numberOf("-" + text), -kInfinity) << text.substr(0, 40);
  }
}

TEST(JsonNumber, NumberBelowADouble_IsZero) {
  for (const std::string& text :
       {std::string("1e-999"), std::string("2e-324"), std::string("1e-99999999999999999999"),
        "0." + zeros(400) + "1", "1" + zeros(400) + "e-800", "0." + zeros(70000) + "1e60000",
        std::string("1e-9223372036854775808")}) {
    EXPECT_EQ(numberOf(text), 0) << text.substr(0, 40);
    EXPECT_EQ(numberOf("-" + text), 0) << text.substr(0, 40);
  }
}

TEST(JsonNumber, ZeroWithAnyExponent_IsZero) {
  for (const std::string& text :
       {std::string("0e400"), std::string("-0e400"), std::string("0.000e99999999999999999999"),
        std::string("0e-400"), "0." + zeros(1000) + "e9999"}) {
    EXPECT_EQ(numberOf(text), 0) << text.substr(0, 40);
  }
}

TEST(JsonNumber, DigitsThatTheExponentCancels_KeepTheirValue) {
  for (const size_t count : {400u, 70000u, 700000u}) {
    const std::string exponent = std::to_string(count);
    EXPECT_EQ(numberOf("1" + zeros(count) + "e-" + exponent), 1) << count;
    EXPECT_EQ(numberOf("25" + zeros(count) + ".0e-" + exponent), 25) << count;
    EXPECT_EQ(numberOf("0." + zeros(count) + "25e" + exponent), 0.25) << count;
    EXPECT_EQ(numberOf("-0." + zeros(count) + "25E+" + exponent), -0.25) << count;
  }
}

TEST(JsonNumber, Rounding_DependsOnEveryDigit) {
  // Exactly between 1 and the next double; a further digit, however late, decides.
  const std::string half = "1.00000000000000011102230246251565404236316680908203125";
  const double next = std::nextafter(1.0, 2.0);
  EXPECT_EQ(numberOf(half), 1.0);
  EXPECT_EQ(numberOf(half + zeros(2000)), 1.0);
  EXPECT_EQ(numberOf(half + zeros(2000) + "1"), next);
  EXPECT_EQ(numberOf(half + "1" + zeros(2000)), next);
  EXPECT_EQ(numberOf(half + zeros(2000) + "10"), next);
  EXPECT_EQ(numberOf("4294967295.9"), 4294967295.9);
  EXPECT_EQ(numberOf("2.99999999999999999999"), 3.0);
}

TEST(JsonNumber, DecimalCommaOfTheLocale_ChangesNothing) {
  for (const char* name : {"de_DE.UTF-8", "de_DE", "German_Germany"}) {
    std::setlocale(LC_ALL, name);
  }
  EXPECT_EQ(numberOf("1.5"), 1.5);
  std::setlocale(LC_ALL, "C");
}

TEST(JsonNumber, NumberOfABrokenForm_IsMalformedAtTheOffendingByte) {
  expectFault("-", 1);
  expectFault("--1", 1);
  expectFault("-x", 1);
  expectFault("+1", 0);
  expectFault(".5", 0);
  expectFault("-.5", 1);
  expectFault("01", 1);
  expectFault("-01", 2);
  expectFault("00", 1);
  expectFault("1.", 2);
  expectFault("1.e5", 2);
  expectFault("1..5", 2);
  expectFault("1.5.5", 3);
  expectFault("1e", 2);
  expectFault("1E", 2);
  expectFault("1e+", 3);
  expectFault("1e-", 3);
  expectFault("1e+-5", 3);
  expectFault("1e5.5", 3);
  expectFault("1e5e5", 3);
  expectFault("1-5", 1);
  expectFault("0x10", 1);
  expectFault("1f", 1);
  expectFault("[1. ]", 3);
  expectFault("1" + zeros(400) + ".", 402);
  expectFault("1e999.", 5);
  expectFault("1e999e", 5);
}

// ---- Strings ----

TEST(JsonString, StringWithoutEscapes_IsUnchanged) {
  for (const std::string& text :
       {std::string(), std::string("text"), std::string("\x20\x7F"),
        std::string("\xC2\x80\xDF\xBF"),
        std::string("\xE0\xA0\x80\xEC\xBF\xBF\xED\x80\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF"),
        std::string(
            "\xF0\x90\x80\x80\xF1\x80\x80\x80\xF3\xBF\xBF\xBF\xF4\x80\x80\x80\xF4\x8F\xBF\xBF")}) {
    EXPECT_EQ(stringOf("\"" + text + "\""), text);
  }
}

TEST(JsonString, ShortEscapes_AreDecoded) {
  EXPECT_EQ(stringOf(R"("\"\\\/\b\f\n\r\t")"), "\"\\/\b\f\n\r\t");
}

TEST(JsonString, EscapedCodeUnits_AreDecodedToUtf8) {
  EXPECT_EQ(stringOf(R"("\u0041\u007f\u0080\u07ff\u0800\uffff")"),
            "A\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF");
  EXPECT_EQ(stringOf(R"("\ud7ff\ue000")"), "\xED\x9F\xBF\xEE\x80\x80");
  EXPECT_EQ(stringOf(R"("\uabcd\uABCD")"), "\xEA\xAF\x8D\xEA\xAF\x8D");
  EXPECT_EQ(stringOf(R"("a\u0000b")"), std::string("a\0b", 3));
}

TEST(JsonString, SurrogatePairs_AreDecodedToOneCharacter) {
  EXPECT_EQ(stringOf(R"("\ud800\udc00")"), "\xF0\x90\x80\x80");
  EXPECT_EQ(stringOf(R"("\ud83d\ude00")"), "\xF0\x9F\x98\x80");
  EXPECT_EQ(stringOf(R"("\udbff\udfff")"), "\xF4\x8F\xBF\xBF");
}

TEST(JsonString, EscapesBesideOtherCharacters_KeepThem) {
  EXPECT_EQ(stringOf(R"("a\nb\u00e9c\\")"),
            "a\nb\xC3\xA9"
            "c\\");
}

TEST(JsonString, Keys_AreDecodedAsValuesAre) {
  EXPECT_EQ(eventsOf(R"({"\u0061b":"c","d":"\u0065"})"),
            "object@0 key:ab@1 string:c@1 key:d@1 string:e@1 end@0 ");
}

TEST(JsonString, StringLongerThanTheBuffer_IsDecoded) {
  const std::string text(100'000, 'x');
  EXPECT_EQ(stringOf("\"\\n" + text + "\""), "\n" + text);
}

TEST(JsonString, LoneSurrogate_IsMalformedAtItsEscape) {
  expectFault(R"("ab\ud800")", 3);
  expectFault(R"("ab\udbffx")", 3);
  expectFault(R"("ab\udc00")", 3);
  expectFault(R"("ab\udfff")", 3);
  expectFault(R"("ab\udc00cd\n")", 3);
  expectFault(R"("\ud83d\ude00\ude00")", 13);
  expectFault(R"("\ude00\ud83d")", 1);
  expectFault(R"("\ud800\ud800\udc00")", 1);
  expectFault(R"("\ud800\n")", 1);
  expectFault(R"("\ud800\u12g4")", 1);
  expectFault(R"("\ud800\ue000")", 1);
  expectFault(R"(["FLOAT","\udc00"])", 10);
  expectFault(R"({"x\udc00":1})", 3);
}

TEST(JsonString, InvalidEscape_IsMalformedAtItsBackslash) {
  expectFault(R"("ab\x41")", 3);
  expectFault(R"("ab\U0041")", 3);
  expectFault(R"("ab\0")", 3);
  expectFault(R"("ab\u00g0")", 3);
  expectFault(R"("ab\u00G0")", 3);
  expectFault(R"("ab\u00/0")", 3);
  expectFault(R"("ab\u00:0")", 3);
  expectFault(R"("ab\u00@0")", 3);
  expectFault(R"("ab\u00`0")", 3);
  expectFault(R"("ab\u004")", 3);
  expectFault(R"("ab\)", 3);
  expectFault(R"("ab\u)", 3);
  expectFault(R"("ab\u004)", 3);
  expectFault(R"("\ud83d)", 1);
  expectFault(R"("\ud83d\)", 1);
}

TEST(JsonString, UnterminatedString_IsMalformedAtTheEndOfTheDocument) {
  expectFault("\"", 1);
  expectFault("\"abc", 4);
  expectFault(R"("abc\")", 6);
  expectFault(R"({"abc)", 5);
}

TEST(JsonString, ControlCharacter_IsMalformedAtItsByte) {
  for (char c = 1; c < 0x20; ++c) {
    expectFault(std::string("\"ab") + c + "\"", 3);
  }
}

TEST(JsonString, InvalidUtf8_IsMalformedAtItsFirstByte) {
  for (const char* bytes : {"\x80",
                            "\xBF",
                            "\xC0\x80",
                            "\xC1\xBF",
                            "\xC2",
                            "\xC2x",
                            "\xC2\xC0",
                            "\xDF\x7F",
                            "\xE0\x9F\xBF",
                            "\xE0\xA0",
                            "\xE0\xA0x",
                            "\xE1\x7F\x80",
                            "\xE1\xC0\x80",
                            "\xE1\x80\xC0",
                            "\xED\xA0\x80",
                            "\xED\xBF\xBF",
                            "\xEF\xBF",
                            "\xF0\x8F\xBF\xBF",
                            "\xF0\x90\x80",
                            "\xF0\x90\x80x",
                            "\xF0\x90x\x80",
                            "\xF1\x7F\x80\x80",
                            "\xF1\xC0\x80\x80",
                            "\xF1\x80\x80\xC0",
                            "\xF4\x90\x80\x80",
                            "\xF5\x80\x80\x80",
                            "\xF8\x88\x80\x80\x80",
                            "\xFE",
                            "\xFF"}) {
    expectFault(std::string("\"ab") + bytes + "\"", 3);
    // The document ends within the character.
    expectFault(std::string("\"ab") + bytes, 3);
  }
}

}  // namespace
}  // namespace nTests
