#include "tools/quenra/text/numbertext.h"

#include <gtest/gtest.h>

#include <limits>

namespace nTests {
namespace {

using namespace nCommandLine;

TEST(NumberText, UnsignedIsDecimalOrHexadecimal) {
  EXPECT_EQ(parseUnsigned("0"), 0u);
  EXPECT_EQ(parseUnsigned("268435712"), 0x10000100u);
  EXPECT_EQ(parseUnsigned("0x1000cc00"), 0x1000CC00u);
  EXPECT_EQ(parseUnsigned("0XFFFFFFFF"), 0xFFFFFFFFu);
  EXPECT_EQ(parseUnsigned("010"), 10u) << "a leading zero does not mean octal";
}

TEST(NumberText, TextThatIsNoUnsigned_IsRefused) {
  for (const char* text : {"", "0x", "-1", "+1", "1 ", " 1", "12x", "0x100000000", "4294967296",
                           "1.5", "x", "0x-1", "0x0x1"}) {
    EXPECT_EQ(parseUnsigned(text), std::nullopt) << "'" << text << "'";
  }
}

TEST(NumberText, StatusCode_IsTakenInEveryFormProgramsShow) {
  EXPECT_EQ(parseStatusCode("-26934"), -26934);
  EXPECT_EQ(parseStatusCode("240050"), 240050);
  EXPECT_EQ(parseStatusCode("+240050"), 240050);
  EXPECT_EQ(parseStatusCode("0xFFFF96CA"), -26934);
  EXPECT_EQ(parseStatusCode("4294940362"), -26934);
  EXPECT_EQ(parseStatusCode("-2147483648"), std::numeric_limits<int32_t>::min());
}

TEST(NumberText, TextThatIsNoStatusCode_IsRefused) {
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

}  // namespace
}  // namespace nTests
