// Searches in an image, its texts, and the values of header fields.
#include "source/user/firmware/timagetext.h"

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>

#include "source/user/firmware/decoding/selection.h"
#include "source/user/firmware/tfirmwarepayload.h"
#include "source/user/firmware/tsectionheaders.h"

namespace nTests {
namespace {

using nQUENRA1400::numberOf;
using nQUENRA1400::tForwardSearch;
using nQUENRA1400::tImageText;
using nQUENRA1400::tSharedText;
using nQUENRA1400::tTextRange;
using nQUENRA1400::nFirmwareDecoding::bestKernels;

// ---- Searches ----

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

// ---- Shared texts ----

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

// ---- Values of header fields ----

// Applies the rule to a text at any position in an image.
std::optional<std::string_view> withoutQuotes(std::string_view text) {
  constexpr size_t kStart = 1000;
  const size_t first = text.find('"');
  const size_t second = first == text.npos ? text.npos : text.find('"', first + 1);
  const auto inImage = [](size_t place) {
    return place == std::string_view::npos ? place : kStart + place;
  };
  const std::optional<tTextRange> range =
      nQUENRA1400::withoutQuotes({kStart, kStart + text.size()}, inImage(first), inImage(second));
  if (!range) {
    return std::nullopt;
  }
  return text.substr(range->begin - kStart, range->end - range->begin);
}

TEST(FieldNumber, IsReadAsCReadsUnsignedNumbersOf32Bits) {
  const struct {
    std::string_view text;
    uint32_t number;
  } rows[] = {
      {"0", 0},
      {"7", 7},
      {"007", 7},
      {"4294967295", 0xFFFFFFFF},
      {"4294967296", 0xFFFFFFFF},
      {"123456789012345678901234567890", 0xFFFFFFFF},
      {"-1", 0xFFFFFFFF},
      {"-4294967295", 1},
      {"-4294967296", 0xFFFFFFFF},
      {"+1", 1},
      {"+-1", 0},
      {"- 1", 0},
      {" \t\n\v\f\r 1", 1},
      {"1abc", 1},
      {"abc", 0},
      {"\"1\"", 0},
      {" ", 0},
      {"-", 0},
      {"0x1f", 31},
      {"0x1F", 31},
      {"0xffffffff", 0xFFFFFFFF},
      {"0x100000000", 0xFFFFFFFF},
      {"0x", 0},
      {"0xg", 0},
      {"0x 1", 0},
      {"0x-1", 0},
      {"0x0x1", 0},
      {"0X1F", 0},
      {" 0x1", 0},
      {"-0x1", 0},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(numberOf(row.text), row.number) << row.text;
  }
}

TEST(FieldText, LosesQuotesThatEndIt) {
  EXPECT_EQ(withoutQuotes("plain"), "plain");
  EXPECT_EQ(withoutQuotes("\"quoted\""), "quoted");
  EXPECT_EQ(withoutQuotes("ab\"cd\""), "cd");
  EXPECT_EQ(withoutQuotes("\"\""), "");
}

TEST(FieldText, KeepsOtherQuotes) {
  EXPECT_EQ(withoutQuotes("\"a\"b"), "\"a\"b");
  EXPECT_EQ(withoutQuotes("\"a\"b\""), "\"a\"b\"");
  EXPECT_EQ(withoutQuotes("\"\"x\""), "\"\"x\"");
  EXPECT_EQ(withoutQuotes("\"\"\""), "\"\"\"");
}

TEST(FieldText, WithAQuoteThatIsNeverClosed_IsNone) {
  EXPECT_EQ(withoutQuotes("\""), std::nullopt);
  EXPECT_EQ(withoutQuotes("a\"b"), std::nullopt);
}

TEST(TextRange, Contains_NoRangeThatCrossesAnEnd) {
  constexpr tTextRange kRange{10, 20};
  EXPECT_TRUE(kRange.contains({10, 20}));
  EXPECT_TRUE(kRange.contains({11, 19}));
  EXPECT_FALSE(kRange.contains({9, 15}));
  EXPECT_FALSE(kRange.contains({15, 21}));
}

}  // namespace
}  // namespace nTests
