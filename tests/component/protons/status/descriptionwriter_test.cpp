#include "zoapal/protons/status/descriptionwriter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <ostream>
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

// What a byte of a value looks like in the text.
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
  EXPECT_EQ(buffer.append("k", fillingValue(GetParam()) + "v"), tAppendResult::noRoom);
  EXPECT_EQ(buffer.bytes(), before);
}

TEST_P(ExactRoom, EscapesCountAsWritten) {
  tBuffer buffer(GetParam());
  std::string value = fillingValue(GetParam());
  value.back() = '\\';
  EXPECT_EQ(buffer.append("k", value), tAppendResult::noRoom);
}

INSTANTIATE_TEST_SUITE_P(Texts, ExactRoom, testing::Values("{}", R"({"a":1})"));

TEST(DescriptionWriter, StrayByteInTheFreeRoom_EndsTheRoom) {
  tBuffer buffer("{}", 64);
  buffer.set(12, 'x');
  EXPECT_EQ(buffer.append("k", "1234"), tAppendResult::noRoom);
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
