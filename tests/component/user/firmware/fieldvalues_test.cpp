#include "source/user/firmware/tsectionheaders.h"

#include <gtest/gtest.h>

namespace nTests {
namespace {

using nQUENRA1400::numberOf;
using nQUENRA1400::tTextRange;

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

}  // namespace
}  // namespace nTests
