// Names between the code page and UTF-16, on the fake's code page: the first 256 characters of
// Unicode.
#include "zoapal/protons/text/windowsu/codepage.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <system_error>

#include "tests/fakewindows/allocationplan.h"
#include "tests/fakewindows/fakewindowstest.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::tAllocationPlan;
using nFakeWindows::tCall;
using nQUENRA1400::nZOAPAL000::codePageFromUtf16;
using nQUENRA1400::nZOAPAL000::utf16FromCodePage;

constexpr int kNoUnicodeTranslation = 1113;

class CodePage : public nFakeWindows::FakeWindowsTest {
 protected:
  // The Windows error that a conversion reports; 0 when it succeeds.
  static int errorOf(const std::function<void()>& convert) {
    try {
      convert();
      return 0;
    } catch (const std::system_error& error) {
      EXPECT_EQ(error.code().category(), std::system_category());
      return error.code().value();
    }
  }
};

TEST_F(CodePage, EveryByte_ComesBackAsItWas) {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) {
    bytes.push_back(static_cast<char>(byte));
  }
  const std::u16string wide = utf16FromCodePage(bytes);
  ASSERT_EQ(wide.size(), 256u);
  EXPECT_EQ(wide[0xE9], u'\u00E9');
  EXPECT_EQ(codePageFromUtf16(wide), bytes);
}

TEST_F(CodePage, CharacterWithoutCounterpart_FailsInsteadOfBeingReplaced) {
  for (const std::u16string_view text : {u"a\u20AC\u00E9", u"\u0141", u"\xD800", u"\uFF3C"}) {
    EXPECT_EQ(errorOf([&] { static_cast<void>(codePageFromUtf16(text)); }), kNoUnicodeTranslation);
  }
  EXPECT_EQ(codePageFromUtf16(u"?"), "?") << "the replacement itself";
}

TEST_F(CodePage, EmptyText_StaysEmptyWithoutAskingTheSystem) {
  EXPECT_EQ(utf16FromCodePage(""), u"");
  EXPECT_EQ(codePageFromUtf16(u""), "");
  EXPECT_EQ(faultPlan().callCount(), 0u);
}

TEST_F(CodePage, EmbeddedNul_IsACharacterLikeOthers) {
  EXPECT_EQ(utf16FromCodePage(std::string_view("a\0b", 3)), std::u16string_view(u"a\0b", 3));
  EXPECT_EQ(codePageFromUtf16(std::u16string_view(u"a\0b", 3)), std::string_view("a\0b", 3));
}

TEST_F(CodePage, BytesThatTheCodePageRefuses_FailInsteadOfAnEmptyName) {
  for (unsigned nth = 1; nth <= 2; ++nth) {
    faultPlan().reset();
    faultPlan().failCall(tCall::multiByteToWideChar, nth, kNoUnicodeTranslation);
    EXPECT_EQ(errorOf([] { static_cast<void>(utf16FromCodePage("name")); }), 1113) << nth;
    EXPECT_EQ(faultPlan().callCount(), nth);
  }
}

TEST_F(CodePage, CharactersThatTheSystemRefuses_FailInsteadOfAnEmptyName) {
  for (unsigned nth = 1; nth <= 2; ++nth) {
    faultPlan().reset();
    faultPlan().failCall(tCall::wideCharToMultiByte, nth, kNoUnicodeTranslation);
    EXPECT_EQ(errorOf([] { static_cast<void>(codePageFromUtf16(u"name")); }), 1113) << nth;
    EXPECT_EQ(faultPlan().callCount(), nth);
  }
}

TEST_F(CodePage, TextOf2Gibibytes_IsRefusedBeforeAnythingOfItIsRead) {
  constexpr size_t kTooLong = size_t{1} << 31;
  EXPECT_THROW(static_cast<void>(utf16FromCodePage({"x", kTooLong})), std::length_error);
  EXPECT_THROW(static_cast<void>(codePageFromUtf16({u"x", kTooLong})), std::length_error);
  EXPECT_EQ(faultPlan().callCount(), 0u);
}

TEST_F(CodePage, TextThatNeedsMemory_ThrowsBadAllocWhenThereIsNone) {
  const std::string text(1000, 'x');
  const std::u16string wide(1000, u'x');
  {
    const tAllocationPlan plan(1);
    EXPECT_THROW(static_cast<void>(utf16FromCodePage(text)), std::bad_alloc);
  }
  {
    const tAllocationPlan plan(1);
    EXPECT_THROW(static_cast<void>(codePageFromUtf16(wide)), std::bad_alloc);
  }
  EXPECT_EQ(utf16FromCodePage(text), wide);
}

}  // namespace
}  // namespace nTests
