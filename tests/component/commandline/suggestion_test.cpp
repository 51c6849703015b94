#include "tools/quenra/text/names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nTests {
namespace {

using nCommandLine::suggest;
using testing::ElementsAre;
using testing::IsEmpty;

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
