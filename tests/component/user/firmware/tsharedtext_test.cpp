#include "source/user/firmware/tfirmwarepayload.h"

#include <gtest/gtest.h>

#include <optional>

namespace nTests {
namespace {

using nQUENRA1400::tSharedText;

TEST(SharedText, Characters_AreCopied) {
  std::string source = "1.4.2f7";
  const tSharedText text(source);
  source = "changed";
  EXPECT_EQ(text, "1.4.2f7");
}

TEST(SharedText, CopiesAndParts_HaveTheSameMemory) {
  const tSharedText text("1.4.2f7");
  const tSharedText copy(text);
  EXPECT_EQ(copy.view().data(), text.view().data());
  const tSharedText part = text.part(2, 3);
  EXPECT_EQ(part, "4.2");
  EXPECT_EQ(part.view().data(), text.view().data() + 2);
}

TEST(SharedText, Part_OutlivesTheTextItIsTakenFrom) {
  std::optional<tSharedText> text(std::in_place, std::string(1000, 'a') + "end");
  const tSharedText part = text->part(1000, 3);
  text.reset();
  EXPECT_EQ(part, "end");
}

TEST(SharedText, TextsOfEqualCharacters_AreEqual) {
  EXPECT_EQ(tSharedText("a"), tSharedText("a"));
  EXPECT_NE(tSharedText("a"), tSharedText("b"));
  EXPECT_EQ(tSharedText(), tSharedText(""));
  EXPECT_NE(tSharedText("a"), "ab");
}

TEST(SharedText, WithoutCharacters_IsEmpty) {
  EXPECT_TRUE(tSharedText().empty());
  EXPECT_TRUE(tSharedText("").empty());
  EXPECT_TRUE(tSharedText("a").part(1, 0).empty());
  EXPECT_FALSE(tSharedText("a").empty());
}

}  // namespace
}  // namespace nTests
