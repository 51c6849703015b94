#include "zoapal/protons/status/descriptionwriter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "tests/component/protons/status/descriptiontext.h"

namespace nTests {
namespace {

using zoerr::tAppendResult;

// A description buffer of exactly the given size.
class tBuffer {
 public:
  explicit tBuffer(std::string_view text, size_t capacity = 512) : bytes_(capacity) {
    text.copy(bytes_.data(), text.size());
    bytes_.back() = 'J';
  }

  tAppendResult append(std::string_view key, std::string_view value) {
    return zoerr::appendText(bytes_.data(), size(), key, value);
  }
  tAppendResult append(std::string_view key, int32_t value) {
    return zoerr::appendInteger(bytes_.data(), size(), key, value);
  }
  void set(size_t position, char c) { bytes_.at(position) = c; }

  [[nodiscard]] std::string text() const { return bytes_.data(); }
  [[nodiscard]] const std::vector<char>& bytes() const { return bytes_; }
  [[nodiscard]] uint32_t size() const { return static_cast<uint32_t>(bytes_.size()); }

 private:
  std::vector<char> bytes_;
};

struct tAppend {
  const char* before;
  const char* after;
};

std::ostream& operator<<(std::ostream& out, const tAppend& append) {
  return out << append.before;
}

TEST(DescriptionText, BufferOfNoBytes_IsEmptyAndNotRead) {
  EXPECT_EQ(zoerr::descriptionText("text", 0), "");
}

TEST(DescriptionText, NoBuffer_IsEmptyWhateverItsCapacity) {
  EXPECT_EQ(zoerr::descriptionText(nullptr, 0), "");
  EXPECT_EQ(zoerr::descriptionText(nullptr, 512), "");
}

class AppendToContainer : public testing::TestWithParam<tAppend> {};

TEST_P(AppendToContainer, Text_GoesToTheEndOfTheTopLevel) {
  tBuffer buffer(GetParam().before);
  EXPECT_EQ(buffer.append("k", "v"), tAppendResult::appended);
  EXPECT_EQ(buffer.text(), GetParam().after);
  EXPECT_TRUE(isJson(buffer.text()));
  EXPECT_EQ(buffer.bytes().back(), 'J');
}

INSTANTIATE_TEST_SUITE_P(
    Objects, AppendToContainer,
    testing::Values(tAppend{"{}", R"({"k":"v"})"}, tAppend{"{ \t\r\n}", "{ \t\r\n\"k\":\"v\"}"},
                    tAppend{R"({"a":1})", R"({"a":1,"k":"v"})"},
                    tAppend{R"({ "a" : 1 })", R"({ "a" : 1 ,"k":"v"})"},
                    tAppend{R"({"a":{}})", R"({"a":{},"k":"v"})"},
                    tAppend{R"({"a":[{"b":"}"}]})", R"({"a":[{"b":"}"}],"k":"v"})"},
                    tAppend{R"({"a":"\"}"})", R"({"a":"\"}","k":"v"})"},
                    tAppend{R"({"a":"\\"})", R"({"a":"\\","k":"v"})"}));

INSTANTIATE_TEST_SUITE_P(Arrays, AppendToContainer,
                         testing::Values(tAppend{"[]", R"(["v"])"}, tAppend{"[ ]", R"([ "v"])"},
                                         tAppend{"[1]", R"([1,"v"])"},
                                         tAppend{"[[]]", R"([[],"v"])"},
                                         tAppend{R"(["]"])", R"(["]","v"])"}));

class NotAContainer : public testing::TestWithParam<const char*> {};

TEST_P(NotAContainer, IsNotAppendedTo) {
  tBuffer buffer(GetParam());
  const std::vector<char> before = buffer.bytes();
  EXPECT_EQ(buffer.append("k", "v"), tAppendResult::unusable);
  EXPECT_EQ(buffer.append("k", 1), tAppendResult::unusable);
  EXPECT_EQ(buffer.bytes(), before);
}

INSTANTIATE_TEST_SUITE_P(Texts, NotAContainer,
                         testing::Values("", " {}", "1", "\"{}\"", "}", "{", "[", "{]", "[}",
                                         R"({"a})", R"({"a\)", R"({"a\"})", R"({"a":{})"));

TEST(DescriptionWriter, BufferWithoutMarker_IsNotAppendedTo) {
  tBuffer buffer("{}");
  buffer.set(511, '\0');
  EXPECT_EQ(buffer.append("k", "v"), tAppendResult::unusable);
  EXPECT_EQ(buffer.text(), "{}");
}

TEST(DescriptionWriter, BufferWithoutNul_IsNotAppendedTo) {
  tBuffer buffer("{\"a\":1}", 8);
  EXPECT_EQ(buffer.append("k", "v"), tAppendResult::unusable);
}

TEST(DescriptionWriter, NoBuffer_IsNotAppendedTo) {
  EXPECT_EQ(zoerr::appendText(nullptr, 0, "k", "v"), tAppendResult::unusable);
  std::array<char, 3> small{'{', '}', 'J'};
  EXPECT_EQ(zoerr::appendText(small.data(), 3, "k", "v"), tAppendResult::unusable);
}

struct tInteger {
  int32_t value;
  const char* text;
};

std::ostream& operator<<(std::ostream& out, const tInteger& integer) {
  return out << integer.text;
}

class Integer : public testing::TestWithParam<tInteger> {};

TEST_P(Integer, IsWrittenInDecimal) {
  tBuffer buffer(R"({"a":1})");
  EXPECT_EQ(buffer.append("line", GetParam().value), tAppendResult::appended);
  EXPECT_EQ(buffer.text(), std::string(R"({"a":1,"line":)") + GetParam().text + "}");
}

TEST_P(Integer, IsAnElementOfAnArray) {
  tBuffer buffer("[]");
  EXPECT_EQ(buffer.append("line", GetParam().value), tAppendResult::appended);
  EXPECT_EQ(buffer.text(), std::string("[") + GetParam().text + "]");
}

INSTANTIATE_TEST_SUITE_P(Values, Integer,
                         testing::Values(tInteger{0, "0"}, tInteger{450, "450"}, tInteger{-1, "-1"},
                                         tInteger{INT32_MAX, "2147483647"},
                                         tInteger{INT32_MIN, "-2147483648"}));

// The encoding of one byte of a value in the text.
std::string escaped(unsigned byte) {
  switch (byte) {
    case 8:
      return "\\b";
    case 9:
      return "\\t";
    case 10:
      return "\\n";
    case 12:
      return "\\f";
    case 13:
      return "\\r";
    case 0x22:
      return "\\\"";
    case 0x5C:
      return "\\\\";
    default:
      break;
  }
  if (byte >= 32 && byte != 127) {
    return std::string(1, static_cast<char>(byte));
  }
  std::array<char, 7> code{};
  std::snprintf(code.data(), code.size(), "\\u%04x", byte);
  return code.data();
}

TEST(Escaping, EveryByte_IsWrittenAsJsonWantsIt) {
  for (unsigned byte = 0; byte < 256; ++byte) {
    const char character = static_cast<char>(byte);
    tBuffer buffer("{}");
    ASSERT_EQ(buffer.append("k", std::string_view(&character, 1)), tAppendResult::appended);
    EXPECT_EQ(buffer.text(), R"({"k":")" + escaped(byte) + R"("})") << "byte " << byte;
    EXPECT_TRUE(isJson(buffer.text())) << "byte " << byte;
  }
}

TEST(Escaping, NamedExamples_LookAsDocumented) {
  tBuffer buffer("{}");
  ASSERT_EQ(buffer.append("k", "\x01\x7F\x1F\\"), tAppendResult::appended);
  EXPECT_EQ(buffer.text(), R"({"k":"\u0001\u007f\u001f\\"})");
}

TEST(Escaping, Key_IsEscapedToo) {
  tBuffer buffer("{}");
  ASSERT_EQ(buffer.append("a\"b", "v"), tAppendResult::appended);
  EXPECT_EQ(buffer.text(), R"({"a\"b":"v"})");
}

TEST(Escaping, ManyByteCharacters_AreCopied) {
  tBuffer buffer("{}");
  ASSERT_EQ(buffer.append("k", "\xC3\xA4\xE2\x82\xAC"), tAppendResult::appended);
  EXPECT_EQ(buffer.text(), "{\"k\":\"\xC3\xA4\xE2\x82\xAC\"}");
}

// A value that, appended under the key "k", makes the text fill a buffer of 512 bytes: text, NUL
// and marker.
std::string fillingValue(std::string_view text) {
  const size_t free = 512 - text.size() - 2;
  const size_t frame = std::string_view(R"("k":"")").size() + (text == "{}" ? 0 : 1);
  return std::string(free - frame, 'v');
}

class ExactRoom : public testing::TestWithParam<const char*> {};

TEST_P(ExactRoom, MemberAndComma_FitWithoutGrowing) {
  tBuffer buffer(GetParam());
  EXPECT_EQ(buffer.append("k", fillingValue(GetParam())), tAppendResult::appended);
  EXPECT_EQ(buffer.text().size(), 510u);
  EXPECT_EQ(buffer.bytes()[510], '\0');
  EXPECT_EQ(buffer.bytes()[511], 'J');
  EXPECT_TRUE(isJson(buffer.text()));
}

TEST_P(ExactRoom, OneByteMore_FailsAndChangesNothing) {
  tBuffer buffer(GetParam());
  const std::vector<char> before = buffer.bytes();
  EXPECT_EQ(buffer.append("k", fillingValue(GetParam()) + "v"), tAppendResult::noSpace);
  EXPECT_EQ(buffer.bytes(), before);
}

TEST_P(ExactRoom, EscapesCountAsWritten) {
  tBuffer buffer(GetParam());
  std::string value = fillingValue(GetParam());
  value.back() = '\\';
  EXPECT_EQ(buffer.append("k", value), tAppendResult::noSpace);
}

INSTANTIATE_TEST_SUITE_P(Texts, ExactRoom, testing::Values("{}", R"({"a":1})"));

// ---- Numbers and names ----

using tAppendValue = tAppendResult (*)(char* buffer, uint32_t capacity, std::string_view key);
struct tLiteral {
  tAppendValue append;
  std::string_view written;
};
std::ostream& operator<<(std::ostream& out, const tLiteral& literal) {
  return out << literal.written;
}

template <uint64_t value>
tAppendResult unsignedNumber(char* buffer, uint32_t capacity, std::string_view key) {
  return zoerr::appendUnsigned(buffer, capacity, key, value);
}
template <int64_t thousandths>
tAppendResult realNumber(char* buffer, uint32_t capacity, std::string_view key) {
  return zoerr::appendReal(buffer, capacity, key, static_cast<double>(thousandths) / 1000);
}
template <bool value>
tAppendResult boolean(char* buffer, uint32_t capacity, std::string_view key) {
  return zoerr::appendBoolean(buffer, capacity, key, value);
}

class Literal : public testing::TestWithParam<tLiteral> {};

TEST_P(Literal, IsWrittenWithoutQuotes) {
  const tLiteral literal = GetParam();
  std::vector<char> buffer(512);
  zoerr::resetDescription(buffer.data(), 512);
  EXPECT_EQ(literal.append(buffer.data(), 512, "k"), tAppendResult::appended);
  EXPECT_EQ(buffer.data(), "{\"k\":" + std::string(literal.written) + "}");
  EXPECT_TRUE(isJson(buffer.data()));
}

TEST_P(Literal, NeedsExactlyItsSpace) {
  const tLiteral literal = GetParam();
  const std::string after = "{\"k\":" + std::string(literal.written) + "}";
  const auto enough = static_cast<uint32_t>(after.size() + 2);
  std::vector<char> buffer(enough);
  zoerr::resetDescription(buffer.data(), enough);
  EXPECT_EQ(literal.append(buffer.data(), enough, "k"), tAppendResult::appended);
  EXPECT_EQ(buffer.data(), after);
  EXPECT_EQ(buffer.back(), 'J');
  std::vector<char> small(enough - 1);
  zoerr::resetDescription(small.data(), enough - 1);
  EXPECT_EQ(literal.append(small.data(), enough - 1, "k"), tAppendResult::noSpace);
  EXPECT_STREQ(small.data(), "{}");
}

INSTANTIATE_TEST_SUITE_P(
    Values, Literal,
    testing::Values(tLiteral{&unsignedNumber<0>, "0"},
                    tLiteral{&unsignedNumber<UINT64_MAX>, "18446744073709551615"},
                    tLiteral{&realNumber<0>, "0.0"}, tLiteral{&realNumber<1500>, "1.5"},
                    tLiteral{&realNumber<-1500>, "-1.5"}, tLiteral{&realNumber<-40>, "-0.0"},
                    tLiteral{&realNumber<99960>, "100.0"}, tLiteral{&boolean<true>, "true"},
                    tLiteral{&boolean<false>, "false"}, tLiteral{&zoerr::appendNull, "null"}));

// ---- Real numbers: the text of std::to_chars, which the library does not link ----

std::string realText(double value) {
  std::array<char, 512> buffer{};
  zoerr::resetDescription(buffer.data(), buffer.size());
  EXPECT_EQ(zoerr::appendReal(buffer.data(), buffer.size(), "", value), tAppendResult::appended);
  const std::string_view text = buffer.data();
  return std::string(text.substr(4, text.size() - 5));
}

std::string expectedText(double value) {
  std::array<char, 512> text{};
  const auto end =
      std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, 1);
  return {text.data(), end.ptr};
}

// A double and its two neighbours, of both signs.
void expectExactText(double value) {
  const double infinity = std::numeric_limits<double>::infinity();
  for (const double near : {value, std::nextafter(value, 0.0), std::nextafter(value, infinity)}) {
    for (const double number : {near, -near}) {
      if (std::isfinite(number)) {
        ASSERT_EQ(realText(number), expectedText(number)) << std::bit_cast<uint64_t>(number);
      }
    }
  }
}

TEST(RealNumber, OfAnyBitPattern_HasTheExactText) {
  std::mt19937_64 random(20);  // NOLINT(cert-msc51-cpp): a repeatable sequence
  for (int i = 0; i < 20000; ++i) {
    const auto value = std::bit_cast<double>(random());
    if (std::isfinite(value)) {
      ASSERT_EQ(realText(value), expectedText(value)) << std::bit_cast<uint64_t>(value);
    }
  }
}

TEST(RealNumber, OfEveryMagnitudeAroundTheDecimalPoint_HasTheExactText) {
  std::mt19937_64 random(21);  // NOLINT(cert-msc51-cpp): a repeatable sequence
  for (int exponent = -70; exponent < 70; ++exponent) {
    for (int i = 0; i < 200; ++i) {
      expectExactText(std::ldexp(static_cast<double>(random() >> 11), exponent - 53));
    }
  }
}

TEST(RealNumber, AtEveryPowerOfTwo_HasTheExactText) {
  for (int exponent = -1074; exponent <= 1023; ++exponent) {
    expectExactText(std::ldexp(1.0, exponent));
  }
}

// Halfway between two tenths: odd multiples of 1/20, of which multiples of 1/4 are exact doubles.
TEST(RealNumber, HalfwayBetweenTwoTenths_BecomesTheEvenOne) {
  EXPECT_EQ(realText(0.25), "0.2");
  EXPECT_EQ(realText(0.75), "0.8");
  EXPECT_EQ(realText(-99.75), "-99.8");
  EXPECT_EQ(realText(9.96), "10.0");
  for (int quarters = 1; quarters < 4000; ++quarters) {
    expectExactText(quarters / 4.0);
  }
}

TEST(RealNumber, AtTheEndsOfTheRange_HasTheExactText) {
  using tLimits = std::numeric_limits<double>;
  for (const double value : {0.0, tLimits::denorm_min(), tLimits::min(), tLimits::max(), 1.7e308,
                             0x1p53, 0x1p63, 0x1p64, 1e22, 1e23}) {
    expectExactText(value);
  }
}

TEST(DescriptionWriter, LargestRealNumber_Fits) {
  std::vector<char> buffer(512);
  zoerr::resetDescription(buffer.data(), 512);
  const double lowest = std::numeric_limits<double>::lowest();
  EXPECT_EQ(zoerr::appendReal(buffer.data(), 512, "k", lowest), tAppendResult::appended);
  const std::string text = buffer.data();
  EXPECT_EQ(text.size(), std::string_view("{\"k\":-.0}").size() + 309);
  EXPECT_TRUE(text.starts_with("{\"k\":-17976931348623157"));
  EXPECT_TRUE(isJson(text));
}

TEST(DescriptionWriter, RealNumberThatIsNotFinite_IsNull) {
  for (const double value :
       {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
        std::numeric_limits<double>::quiet_NaN()}) {
    std::vector<char> buffer(512);
    zoerr::resetDescription(buffer.data(), 512);
    EXPECT_EQ(zoerr::appendReal(buffer.data(), 512, "k", value), tAppendResult::appended);
    EXPECT_STREQ(buffer.data(), R"({"k":null})");
  }
}

TEST(DescriptionWriter, StrayByteInTheFreeSpace_EndsTheSpace) {
  tBuffer buffer("{}", 64);
  buffer.set(12, 'x');
  EXPECT_EQ(buffer.append("k", "1234"), tAppendResult::noSpace);
  EXPECT_EQ(buffer.append("k", "123"), tAppendResult::appended);
  EXPECT_EQ(buffer.text(), R"({"k":"123"})");
  EXPECT_EQ(buffer.bytes()[12], 'x');
}

TEST(DescriptionWriter, Reset_LeavesAnEmptyObjectZerosAndTheMarker) {
  for (const size_t capacity : {4u, 5u, 512u}) {
    std::vector<char> bytes(capacity, '#');
    zoerr::resetDescription(bytes.data(), static_cast<uint32_t>(capacity));
    const std::vector<char> empty = tBuffer("{}", capacity).bytes();
    EXPECT_EQ(bytes, empty);
  }
}

}  // namespace
}  // namespace nTests
