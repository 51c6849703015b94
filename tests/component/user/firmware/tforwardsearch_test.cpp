#include "source/user/firmware/timagetext.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "source/user/firmware/decoding/selection.h"

namespace nTests {
namespace {

using nQUENRA1400::tForwardSearch;
using nQUENRA1400::tImageText;
using nQUENRA1400::nFirmwareDecoding::bestKernels;

constexpr size_t kNotFound = tImageText::kNotFound;

tImageText imageOf(std::string_view text) {
  return {text.data(), text.size(), bestKernels()};
}

TEST(ForwardSearch, SamePosition_ReturnsTheSamePlace) {
  const tImageText text = imageOf("..ab..ab");
  tForwardSearch search("ab");
  EXPECT_EQ(search.find(text, 0), 2u);
  EXPECT_EQ(search.find(text, 0), 2u);
  EXPECT_EQ(search.find(text, 2), 2u);
}

TEST(ForwardSearch, PositionPastAPlace_ReturnsTheNextOne) {
  const tImageText text = imageOf("..ab..abab");
  tForwardSearch search("ab");
  EXPECT_EQ(search.find(text, 1), 2u);
  EXPECT_EQ(search.find(text, 3), 6u);
  EXPECT_EQ(search.find(text, 7), 8u);
  EXPECT_EQ(search.find(text, 9), kNotFound);
  EXPECT_EQ(search.find(text, 10), kNotFound);
}

TEST(ForwardSearch, PlaceAtTheEndOfTheRange_IsFoundOnlyWhenItFits) {
  const tImageText text = imageOf("..ab");
  for (const size_t to : {2u, 3u}) {
    tForwardSearch search("ab");
    EXPECT_EQ(search.find(text, 0, to), kNotFound) << to;
    EXPECT_EQ(search.find(text, 0, 4), 2u) << "after a search up to " << to;
  }
}

TEST(ForwardSearch, PlaceBeyondALaterRange_IsKeptForTheNextOne) {
  const tImageText text = imageOf("......ab");
  tForwardSearch search("ab");
  EXPECT_EQ(search.find(text, 0, 8), 6u);
  EXPECT_EQ(search.find(text, 1, 4), kNotFound);
  EXPECT_EQ(search.find(text, 2, 8), 6u);
}

TEST(ForwardSearch, EmptyRange_HasNoPlace) {
  const tImageText text = imageOf("abab");
  tForwardSearch search("ab");
  EXPECT_EQ(search.find(text, 2, 2), kNotFound);
  EXPECT_EQ(search.find(text, 2, 4), 2u);
}

TEST(ForwardSearch, Nul_EndsTheText) {
  const tImageText text = imageOf({"ab\0ab", 5});
  tForwardSearch search("ab");
  EXPECT_EQ(search.find(text, 0), 0u);
  EXPECT_EQ(search.find(text, 1), kNotFound);
  EXPECT_EQ(search.find(text, 2), kNotFound);
}

TEST(ForwardSearch, AnyRangesInOrder_GiveWhatASearchOfEachGives) {
  std::mt19937 random(11);
  const auto upTo = [&random](size_t limit) { return random() % (limit + 1); };
  for (int round = 0; round < 5000; ++round) {
    std::string characters(1 + upTo(60), '\0');
    for (char& character : characters) {
      character = "abc"[upTo(2)];
    }
    const std::string pattern = round % 2 == 0 ? "a" : "abca";
    const size_t anchor = upTo(pattern.size() - 1);
    const tImageText text = imageOf(characters);
    tForwardSearch search(pattern, anchor);
    for (size_t from = 0; from <= characters.size(); from += upTo(6)) {
      const size_t to = from + upTo(characters.size() - from);
      const std::string_view part = std::string_view(characters).substr(from, to - from);
      const size_t expected = part.find(pattern);
      ASSERT_EQ(search.find(text, from, to), expected == part.npos ? kNotFound : from + expected)
          << characters << " from " << from << " to " << to;
      if (upTo(20) == 0) {
        break;
      }
    }
  }
}

}  // namespace
}  // namespace nTests
