#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <utility>

#include "tools/commandline/argumenttext.h"
#include "tools/commandline/utf8text.h"

namespace nTests {
namespace {

using namespace nCommandLine;
using testing::ElementsAre;
using testing::IsEmpty;

// ---- UTF-8 ----

TEST(Utf8Text, ValidText_IsUnchanged) {
  const std::string text = "plain, \xC3\xA9, \xE2\x82\xAC, \xF0\x9F\x94\xA7";
  EXPECT_EQ(validUtf8(text), text);
  EXPECT_EQ(printableText(text), text);
}

TEST(Utf8Text, BytesThatAreNotUtf8_BecomeReplacementCharacters) {
  EXPECT_EQ(validUtf8("a\xFF"
                      "b"),
            "a\xEF\xBF\xBD"
            "b");
  EXPECT_EQ(validUtf8("\xC3"), "\xEF\xBF\xBD") << "cut off";
  EXPECT_EQ(validUtf8("\xC3"
                      "A"),
            "\xEF\xBF\xBD"
            "A")
      << "without continuation";
  EXPECT_EQ(validUtf8("\x80"), "\xEF\xBF\xBD") << "continuation alone";
  EXPECT_EQ(validUtf8("\xE0\x80\x80"), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD") << "too long a form";
  EXPECT_EQ(validUtf8("\xED\xA0\x80"), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD") << "a surrogate";
  EXPECT_EQ(validUtf8("\xF4\x90\x80\x80").substr(0, 3), "\xEF\xBF\xBD") << "beyond the last";
}

TEST(Utf8Text, ControlCharacters_AreEscaped) {
  EXPECT_EQ(printableText("\x1B[31mred\r\n"), "\\x1B[31mred\\x0D\\x0A");
  EXPECT_EQ(printableText("\x7F"), "\\x7F");
  EXPECT_EQ(printableText("\xC2\x9B"), "\\x9B") << "the one-character form of an escape sequence";
  EXPECT_EQ(validUtf8("\x1B"), "\x1B");
}

TEST(Utf8Text, CharactersThatRearrangeALine_AreEscaped) {
  EXPECT_EQ(printableText("a\xE2\x80\xAE"
                          "b"),
            "a\\u202Eb")
      << "right-to-left override";
  for (const auto& [bytes, shown] :
       {std::pair("\xC2\x85", "\\x85"),  // next line
        std::pair("\xD8\x9C", "\\u061C"), std::pair("\xE2\x80\x8E", "\\u200E"),
        std::pair("\xE2\x80\x8F", "\\u200F"), std::pair("\xE2\x80\xA8", "\\u2028"),
        std::pair("\xE2\x80\xA9", "\\u2029"), std::pair("\xE2\x80\xAA", "\\u202A"),
        std::pair("\xE2\x81\xA6", "\\u2066"), std::pair("\xE2\x81\xA9", "\\u2069"),
        std::pair("\xEF\xBB\xBF", "\\uFEFF")}) {
    EXPECT_EQ(printableText(bytes), shown);
  }
  for (const char* const bytes : {"\xE2\x80\x8D", "\xE2\x80\xA7", "\xE2\x80\xAF", "\xE2\x81\xA5",
                                  "\xE2\x81\xAA", "\xC2\xA0"}) {
    EXPECT_EQ(printableText(bytes), bytes) << "a neighbour";
  }
}

TEST(Utf8Text, JsonText_IsTheSameTextInPrintableCharacters) {
  EXPECT_EQ(jsonText("a\"b\\c/\xC3\xA9"), "\"a\\\"b\\\\c/\xC3\xA9\"");
  EXPECT_EQ(jsonText("\b\t\n\f\r\x1B\x7F\xC2\x85"), "\"\\b\\t\\n\\f\\r\\u001B\\u007F\\u0085\"");
  EXPECT_EQ(jsonText("\xE2\x80\xAE\xE2\x80\xA8\xEF\xBB\xBF\xFF"),
            "\"\\u202E\\u2028\\uFEFF\xEF\xBF\xBD\"");
}

TEST(Utf8Text, WidthIsCountedInCharacters) {
  EXPECT_EQ(widthOf(""), 0u);
  EXPECT_EQ(widthOf("a\xC3\xA9\xE2\x82\xAC"), 3u);
}

// ---- UTF-16 ----

TEST(Utf16Word, EveryCharacter_KeepsItsMeaning) {
  EXPECT_EQ(utf8Word(u""), "");
  EXPECT_EQ(utf8Word(u"--json"), "--json");
  EXPECT_EQ(utf8Word(u"\u007F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF"),
            "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF");
  EXPECT_EQ(utf8Word(u"\U00010000\U0010FFFF"), "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
}

TEST(Utf16Word, EveryCodePoint_IsValidUtf8) {
  for (char32_t point = 1; point <= 0x10FFFF; point += point < 0xD7FF || point > 0xFFFF ? 41 : 1) {
    std::u16string word;
    if (point < 0x10000) {
      word += static_cast<char16_t>(point);
    } else {
      word += static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10));
      word += static_cast<char16_t>(0xDC00 + ((point - 0x10000) & 0x3FF));
    }
    const bool isSurrogate = point >= 0xD800 && point < 0xE000;
    EXPECT_EQ(isUtf8(utf8Word(word)), !isSurrogate) << static_cast<unsigned>(point);
  }
}

TEST(Utf16Word, UnpairedSurrogate_IsNeverACharacter) {
  const std::u16string halves[] = {
      {0xD83D}, {0xDD27}, {0xDD27, 0xD83D}, {u'a', 0xD83D, u'b'}, {0xD83D, 0xD83D, 0xDD27}};
  for (const std::u16string& word : halves) {
    EXPECT_FALSE(isUtf8(utf8Word(word)));
  }
  EXPECT_EQ(utf8Word(halves[3]),
            "a\xED\xA0\xBD"
            "b");
}

// ---- Numbers ----

TEST(NumberText, UnsignedIsDecimalOrHexadecimal) {
  EXPECT_EQ(parseUnsigned("0"), 0u);
  EXPECT_EQ(parseUnsigned("268435712"), 0x10000100u);
  EXPECT_EQ(parseUnsigned("0x1000cc00"), 0x1000CC00u);
  EXPECT_EQ(parseUnsigned("0XFFFFFFFF"), 0xFFFFFFFFu);
  EXPECT_EQ(parseUnsigned("010"), 10u) << "a leading zero does not mean octal";
}

TEST(Seconds, DecimalNumber_MayHaveThreePlaces) {
  using std::chrono::milliseconds;
  EXPECT_EQ(parseSeconds("0"), milliseconds(0));
  EXPECT_EQ(parseSeconds("2"), milliseconds(2000));
  EXPECT_EQ(parseSeconds("0.5"), milliseconds(500));
  EXPECT_EQ(parseSeconds("1.05"), milliseconds(1050));
  EXPECT_EQ(parseSeconds("0.001"), milliseconds(1));
  EXPECT_EQ(parseSeconds("4294967295.999"), milliseconds(4294967295999));
  for (const char* const text : {"", ".", "1.", ".5", "1.2345", "1,5", "1e3", "0x10", "-1", "+1",
                                 "1.-5", "4294967296", " 1"}) {
    EXPECT_EQ(parseSeconds(text), std::nullopt) << "'" << text << "'";
  }
}

TEST(NumberText, InvalidUnsigned_IsRejected) {
  for (const char* text : {"", "0x", "-1", "+1", "1 ", " 1", "12x", "0x100000000", "4294967296",
                           "1.5", "x", "0x-1", "0x0x1"}) {
    EXPECT_EQ(parseUnsigned(text), std::nullopt) << "'" << text << "'";
  }
}

TEST(NumberText, StatusCode_EveryPrintedForm_IsParsed) {
  EXPECT_EQ(parseStatusCode("-26934"), -26934);
  EXPECT_EQ(parseStatusCode("240050"), 240050);
  EXPECT_EQ(parseStatusCode("+240050"), 240050);
  EXPECT_EQ(parseStatusCode("0xFFFF96CA"), -26934);
  EXPECT_EQ(parseStatusCode("4294940362"), -26934);
  EXPECT_EQ(parseStatusCode("-2147483648"), std::numeric_limits<int32_t>::min());
}

TEST(NumberText, InvalidStatusCode_IsRejected) {
  for (const char* text :
       {"", "-", "+", "--1", "+-1", "-0x1", "-2147483649", "4294967296", "1e3"}) {
    EXPECT_EQ(parseStatusCode(text), std::nullopt) << "'" << text << "'";
  }
}

TEST(NumberText, HexadecimalHasItsDigits) {
  EXPECT_EQ(hexadecimalText(0x15), "0x15");
  EXPECT_EQ(hexadecimalText(0x100, 8), "0x00000100");
  EXPECT_EQ(hexadecimalText(0xFFFFFFFF), "0xFFFFFFFF");
}

// ---- Names ----

const std::vector<std::string_view> kNames{"memory-size", "memory-type", "memory-speed",
                                           "memory-locator", "serial-number"};

TEST(Suggestion, NearestNameComesFirst) {
  EXPECT_EQ(suggest("memory-sice", kNames).front(), "memory-size");
  EXPECT_EQ(suggest("memory-spede", kNames).front(), "memory-speed");
  EXPECT_THAT(suggest("serial-nmber", kNames), ElementsAre("serial-number"));
}

TEST(Suggestion, PartOfAName_FindsIt) {
  EXPECT_THAT(suggest("serial", kNames), ElementsAre("serial-number"));
  EXPECT_THAT(suggest("LOCATOR", kNames), ElementsAre("memory-locator"));
}

TEST(Suggestion, GivesThreeAtMost) {
  EXPECT_EQ(suggest("memory", kNames).size(), 3u);
}

TEST(Suggestion, NothingAlike_GivesNone) {
  EXPECT_THAT(suggest("xyzzy", kNames), IsEmpty());
  EXPECT_THAT(suggest("", kNames), IsEmpty());
  EXPECT_THAT(suggest("me", kNames), IsEmpty());
}

TEST(Suggestion, CaseAndUnderscores_DoNotCount) {
  EXPECT_THAT(suggest("SERIAL_NUMBER", kNames), ElementsAre("serial-number"));
}

}  // namespace
}  // namespace nTests
