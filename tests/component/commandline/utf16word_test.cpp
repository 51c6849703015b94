#include "tools/quenra/text/utf8text.h"

#include <gtest/gtest.h>

namespace nTests {
namespace {

using nCommandLine::isUtf8;
using nCommandLine::utf8Word;

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

TEST(Utf16Word, HalfOfASurrogatePair_IsNeverTakenForACharacter) {
  const std::u16string halves[] = {
      {0xD83D}, {0xDD27}, {0xDD27, 0xD83D}, {u'a', 0xD83D, u'b'}, {0xD83D, 0xD83D, 0xDD27}};
  for (const std::u16string& word : halves) {
    EXPECT_FALSE(isUtf8(utf8Word(word)));
  }
  EXPECT_EQ(utf8Word(halves[3]),
            "a\xED\xA0\xBD"
            "b");
}

}  // namespace
}  // namespace nTests
