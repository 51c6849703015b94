#include "tools/quenra/text/utf8text.h"

#include <gtest/gtest.h>

#include <utility>

namespace nTests {
namespace {

using namespace nCommandLine;

TEST(Utf8Text, ValidText_StaysAsItIs) {
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

TEST(Utf8Text, ControlCharacters_AreShownRatherThanSent) {
  EXPECT_EQ(printableText("\x1B[31mred\r\n"), "\\x1B[31mred\\x0D\\x0A");
  EXPECT_EQ(printableText("\x7F"), "\\x7F");
  EXPECT_EQ(printableText("\xC2\x9B"), "\\x9B") << "the one-character form of an escape sequence";
  EXPECT_EQ(validUtf8("\x1B"), "\x1B");
}

TEST(Utf8Text, CharactersThatRearrangeALine_AreShownRatherThanSent) {
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

}  // namespace
}  // namespace nTests
