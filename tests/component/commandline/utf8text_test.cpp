#include "tools/quenra/output/utf8text.h"

#include <gtest/gtest.h>

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

TEST(Utf8Text, WidthIsCountedInCharacters) {
  EXPECT_EQ(widthOf(""), 0u);
  EXPECT_EQ(widthOf("a\xC3\xA9\xE2\x82\xAC"), 3u);
}

}  // namespace
}  // namespace nTests
