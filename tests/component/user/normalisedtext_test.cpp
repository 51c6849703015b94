#include "source/user/attributes/normalisedtext.h"

#include <gtest/gtest.h>

#include <string>

namespace nTests {
namespace {

using nQUENRA1400::tNormalisedText;
using nQUENRA1400::tSegments;
using namespace std::string_literals;

struct tCase {
  std::string text;
  std::string one;                // as one segment
  std::string separatedByCommas;  // as segments separated by commas
};
class NormalisedText : public testing::TestWithParam<tCase> {};

TEST_P(NormalisedText, HasTwoDigitsInEachLeadingGroup) {
  EXPECT_EQ(tNormalisedText(GetParam().text, tSegments::one).view(), GetParam().one);
  EXPECT_EQ(tNormalisedText(GetParam().text, tSegments::separatedByCommas).view(),
            GetParam().separatedByCommas);
}
INSTANTIATE_TEST_SUITE_P(
    Texts, NormalisedText,
    testing::Values(tCase{"7:12", "07:12", "07:12"}, tCase{"17:2", "17:2", "17:2"},
                    tCase{"1:2,3:4", "01:2,3:4", "01:2,03:4"}, tCase{"7", "7", "7"},
                    tCase{"7:", "07:", "07:"}, tCase{"::", "0::", "0::"}, tCase{":", ":", ":"},
                    tCase{",:5", "0,:5", "0,:5"}, tCase{",", ",", ","},
                    tCase{"12:3,4:5,67:8,9:", "12:3,4:5,67:8,9:", "12:3,04:5,67:8,09:"},
                    tCase{"a:b:c", "0a:b:c", "0a:b:c"}, tCase{"1,2:3", "1,2:3", "1,02:3"}));

TEST(NormalisedTextOfNothing, IsOneNulCharacter) {
  EXPECT_EQ(tNormalisedText("", tSegments::one).view(), "\0"s);
  EXPECT_EQ(tNormalisedText("", tSegments::separatedByCommas).view(), "\0"s);
}

TEST(NormalisedTextOfTheLongestString, HasRoom) {
  std::string text;
  std::string expected;
  while (text.size() < 126) {
    text += "1:,";
    expected += "01:,";
  }
  EXPECT_EQ(tNormalisedText(text, tSegments::separatedByCommas).view(), expected);
  const std::string longest(128, ':');
  EXPECT_EQ(tNormalisedText(longest, tSegments::one).view(), "0" + longest);
}

TEST(NormalisedTextOfMoreThanTheLongestString, IsCutToIt) {
  const std::string longest(128, ':');
  EXPECT_EQ(tNormalisedText(std::string(1000, ':'), tSegments::one).view(), "0" + longest);
}

}  // namespace
}  // namespace nTests
