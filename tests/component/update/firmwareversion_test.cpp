#include "source/user/update/firmwareversion.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace nTests {
namespace {

using nQUENRA1400::packedVersion;

TEST(FirmwareVersion, EveryPart_HasItsBits) {
  EXPECT_EQ(packedVersion("0.0.0f0"), 0x0000C000u);
  EXPECT_EQ(packedVersion("0.0.0d0"), 0u);
  EXPECT_EQ(packedVersion("0.0.0a1"), 0x4001u);
  EXPECT_EQ(packedVersion("0.0.0b2"), 0x8002u);
  EXPECT_EQ(packedVersion("1.2.3f4"), 0x0123C004u);
  EXPECT_EQ(packedVersion("255.15.15f16383"), 0xFFFFFFFFu);
}

TEST(FirmwareVersion, CharactersAfterTheBuild_AreIgnored) {
  EXPECT_EQ(packedVersion("1.4.0f7 beta"), packedVersion("1.4.0f7"));
  EXPECT_EQ(packedVersion("1.4.0f7.9"), packedVersion("1.4.0f7"));
}

TEST(FirmwareVersion, TextOfAnotherForm_Is0) {
  for (const char* text : {"",
                           "1",
                           "1.",
                           "1.2",
                           "1.2.3",
                           "1.2.3f",
                           "1.2.f4",
                           "1..3f4",
                           ".2.3f4",
                           "1.2.3e4",
                           "1.2.3F4",
                           "256.0.0f0",
                           "0.16.0f0",
                           "0.0.16f0",
                           "0.0.0f16384",
                           "01.0.0f0",
                           "1.00.0f0",
                           "1.0.03f0",
                           "1.0.0f00",
                           " 1.0.0f0",
                           "+1.0.0f0",
                           "-1.0.0f0",
                           "1 .0.0f0",
                           "1,0.0f0",
                           "1.0.0 f0",
                           "99999999999999999999999999999999.0.0f0",
                           "1.0.0f99999999999999999999999999999999"}) {
    EXPECT_EQ(packedVersion(text), 0u) << text;
  }
}

TEST(FirmwareVersion, EndOfTheText_EndsTheBuild) {
  const std::string text = "1.2.3f45";
  EXPECT_EQ(packedVersion(std::string_view(text).substr(0, 7)), packedVersion("1.2.3f4"));
}

// A version can be as long as an image: reading all of it for each section that shares it would cost the
// product of both. The address sanitizer reports any read past the memory.
TEST(FirmwareVersion, LongRunOfDigits_IsReadNoFurtherThanANumberCanBe) {
  for (const char digit : {'0', '1'}) {
    const std::vector<char> digits(32, digit);
    EXPECT_EQ(packedVersion(std::string_view(digits.data(), size_t{1} << 30)), 0u);
  }
}

}  // namespace
}  // namespace nTests
