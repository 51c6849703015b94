#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "tests/builders/smbiostablebuilder.h"
#include "tests/component/zosmbios/ttestprovider.h"
#include "zosmbios/fieldid.h"

namespace nTests {
namespace {

using namespace nQUENRA1400::nZOSMBIOS_1_1;
using nZOAPALS100::tStatus;

using tStrings = std::vector<std::string>;

constexpr tFieldId kField = textField(9, 4);

// A structure of type 9 whose byte at offset 4 is the number of a string.
std::vector<uint8_t> structureWith(uint8_t number, const tStrings& strings) {
  return tSmbiosTableBuilder().structure(9, {number}, strings).build();
}

tStringRead readFrom(const std::vector<uint8_t>& table) {
  tTestProvider provider(table);
  return readString(provider, kField);
}

tStringRead malformed(uint32_t line) {
  return {-240053, line, kUntouched};
}

TEST(GetString, EveryNumberOfTheSet_GivesItsString) {
  const tStrings strings{"one", "two", "a third one"};
  for (uint8_t number = 1; number <= 3; ++number) {
    EXPECT_EQ(readFrom(structureWith(number, strings)), (tStringRead{0, 0, strings[number - 1u]}));
  }
}

TEST(GetString, FieldAndInstance_SelectTheString) {
  tTestProvider provider(tSmbiosTableBuilder()
                             .structure(9, {1, 2}, {"a", "b"})
                             .structure(8, {1}, {"other"})
                             .structure(9, {2, 1}, {"c", "d"})
                             .build());
  EXPECT_EQ(readString(provider, textField(9, 5), 0).text, "b");
  EXPECT_EQ(readString(provider, textField(9, 4), 1).text, "d");
  EXPECT_EQ(readString(provider, textField(8, 4), 0).text, "other");
}

TEST(GetString, Number255_IsReachable) {
  tStrings strings;
  for (int i = 1; i <= 255; ++i) {
    strings.push_back("string " + std::to_string(i));
  }
  EXPECT_EQ(readFrom(structureWith(255, strings)), (tStringRead{0, 0, "string 255"}));
}

TEST(GetString, NumberZero_IsAnEmptyStringAndAWarning) {
  EXPECT_EQ(readFrom(structureWith(0, {})), (tStringRead{240050, 378, ""}));
  EXPECT_EQ(readFrom(structureWith(0, {"unused"})), (tStringRead{240050, 378, ""}));
}

TEST(GetString, NumberZeroWithoutRoom_IsAWarningAlone) {
  tTestProvider provider(structureWith(0, {}));
  tStatus status;
  char buffer = '#';
  uint32_t size = 0;
  provider.getString(kField, 0, &buffer, &size, status);
  EXPECT_EQ(status.code, 240050);
  EXPECT_EQ(buffer, '#');
  EXPECT_EQ(size, 0u);
}

TEST(GetString, NumberZeroWithoutABuffer_IsAWarningAlone) {
  tTestProvider provider(structureWith(0, {}));
  tStatus status;
  uint32_t size = 10;
  provider.getString(kField, 0, nullptr, &size, status);
  EXPECT_EQ(status.code, 240050);
  EXPECT_EQ(size, 10u);
}

TEST(GetString, NumberZeroWithOneByte_TakesJustTheNul) {
  tTestProvider provider(structureWith(0, {}));
  tStatus status;
  const auto buffer = std::make_unique<char[]>(1);
  buffer[0] = '#';
  uint32_t size = 1;
  provider.getString(kField, 0, buffer.get(), &size, status);
  EXPECT_EQ(status.code, 240050);
  EXPECT_EQ(buffer[0], '\0');
}

TEST(GetString, NumberOneBeyondTheSet_IsMalformed) {
  EXPECT_EQ(readFrom(structureWith(3, {"one", "two"})), malformed(438));
  EXPECT_EQ(readFrom(structureWith(1, {})), malformed(438));
}

TEST(GetString, NumberTwoBeyondTheSet_IsMalformed) {
  EXPECT_EQ(readFrom(structureWith(4, {"one", "two"})), malformed(405));
  EXPECT_EQ(readFrom(structureWith(2, {})), malformed(405));
  EXPECT_EQ(readFrom(structureWith(255, {"one", "two"})), malformed(405));
}

TEST(GetString, NumberOneBeyondTheSet_DoesNotReadTheNextStructure) {
  EXPECT_EQ(
      readFrom(
          tSmbiosTableBuilder().structure(9, {2}, {"one"}).structure(65, {1}, {"next"}).build()),
      malformed(438));
}

struct tUnended {
  const char* name;
  std::vector<uint8_t> table;
  tStringRead expected;
};

std::ostream& operator<<(std::ostream& out, const tUnended& unended) {
  return out << unended.expected;
}

class UnendedSet : public testing::TestWithParam<tUnended> {};

TEST_P(UnendedSet, StopsAtTheTablesEnd) {
  EXPECT_EQ(readFrom(GetParam().table), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Tables, UnendedSet,
    testing::Values(
        tUnended{"LastStringEndedBySingleNul", {9, 5, 0, 0, 1, 'a', 0}, {0, 0, "a"}},
        tUnended{"StringWithoutNul", {9, 5, 0, 0, 1, 'a', 'b'}, malformed(462)},
        tUnended{"SecondStringWithoutNul", {9, 5, 0, 0, 2, 'a', 0, 'b'}, malformed(462)},
        tUnended{"NumberOneAtTheTablesEnd", {9, 5, 0, 0, 1}, malformed(438)},
        tUnended{"NumberTwoAtTheTablesEnd", {9, 5, 0, 0, 2, 'a', 0}, malformed(438)},
        tUnended{"NumberTwoBehindTheTable", {9, 5, 0, 0, 2}, malformed(394)},
        tUnended{"NumberTwoBehindAStringWithoutNul", {9, 5, 0, 0, 2, 'a'}, malformed(394)},
        tUnended{"NumberThreeBehindTheLastString", {9, 5, 0, 0, 3, 'a', 0}, malformed(394)},
        tUnended{"NumberThreeBehindTheSetsEnd", {9, 5, 0, 0, 3, 'a', 0, 0}, malformed(405)}),
    [](const testing::TestParamInfo<tUnended>& unended) { return unended.param.name; });

TEST(GetString, UpTo128Characters_AreRead) {
  for (const size_t length : {1u, 127u, 128u}) {
    const std::string text(length, 't');
    EXPECT_EQ(readFrom(structureWith(1, {text})), (tStringRead{0, 0, text}));
    EXPECT_EQ(readFrom(structureWith(2, {"first", text})), (tStringRead{0, 0, text}));
  }
}

TEST(GetString, MoreThan128Characters_AreMalformed) {
  for (const size_t length : {129u, 130u, 1000u}) {
    EXPECT_EQ(readFrom(structureWith(1, {std::string(length, 't')})), malformed(462));
  }
}

TEST(GetString, LongStringOnTheWay_IsPassed) {
  EXPECT_EQ(readFrom(structureWith(2, {std::string(1000, 't'), "short"})),
            (tStringRead{0, 0, "short"}));
}

TEST(GetString, LongestStringUpToTheTablesEndWithoutNul_IsMalformed) {
  std::vector<uint8_t> table{9, 5, 0, 0, 1};
  table.insert(table.end(), 128, 't');
  EXPECT_EQ(readFrom(table), malformed(462));
}

TEST(GetString, BytesAbove127_AreCopied) {
  EXPECT_EQ(readFrom(structureWith(1, {"\xC4\xFF\x01"})), (tStringRead{0, 0, "\xC4\xFF\x01"}));
}

TEST(GetString, NumericClasses_AreNotFound) {
  tTestProvider provider(structureWith(1, {"text"}));
  for (uint32_t width = 1; width <= 14; ++width) {
    EXPECT_EQ(readString(provider, width << 16 | 0x0904), (tStringRead{-240052, 497, kUntouched}));
  }
}

TEST(GetString, BitsAboveTheWidthClass_AreIgnored) {
  tTestProvider provider(structureWith(1, {"text"}));
  EXPECT_EQ(readString(provider, 0xFFF00000 | kField), (tStringRead{0, 0, "text"}));
}

TEST(GetString, MissingStructure_IsNotFound) {
  tTestProvider provider(structureWith(1, {"text"}));
  EXPECT_EQ(readString(provider, kField, 1), (tStringRead{-240052, 860, kUntouched}));
  EXPECT_EQ(readString(provider, textField(10, 4)), (tStringRead{-240052, 860, kUntouched}));
}

TEST(GetString, FieldBeyondTheStructure_IsNotFound) {
  tTestProvider provider(structureWith(1, {"text"}));
  EXPECT_EQ(readString(provider, textField(9, 5)), (tStringRead{-240052, 235, kUntouched}));
}

TEST(GetString, StructureOutsideTheTable_IsMalformed) {
  EXPECT_EQ(readFrom({9}), malformed(174));
  EXPECT_EQ(readFrom({9, 6, 0, 0, 1}), malformed(189));
}

TEST(GetString, StatusWithAnError_DoesNothing) {
  tTestProvider provider;
  provider.loadWill(structureWith(1, {"text"}));
  tStatus status;
  mergeStatus(status, -3, {"first", 1});
  char buffer = '#';
  uint32_t size = 1;
  provider.getString(kField, 0, &buffer, &size, status);
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(status.line, 1u);
  EXPECT_EQ(size, 1u);
  EXPECT_EQ(buffer, '#');
  EXPECT_EQ(provider.loads(), 0);
}

TEST(GetString, StatusWithAWarning_StillReads) {
  tTestProvider provider(structureWith(1, {"text"}));
  tStatus status;
  mergeStatus(status, 5, {"first", 1});
  std::string buffer(5, '#');
  uint32_t size = 5;
  provider.getString(kField, 0, buffer.data(), &size, status);
  EXPECT_EQ(status.code, 5);
  EXPECT_STREQ(buffer.c_str(), "text");
}

TEST(GetString, WithoutATable_LoadsItOnce) {
  tTestProvider provider;
  provider.loadWill(structureWith(1, {"text"}));
  EXPECT_EQ(readString(provider, kField).text, "text");
  EXPECT_EQ(readString(provider, kField).text, "text");
  EXPECT_EQ(provider.loads(), 1);
}

TEST(GetString, FailedLoad_GivesItsCodeForEveryClassAndIsTriedAgain) {
  tTestProvider provider;
  provider.loadWillFail(-240060);
  for (const tFieldId field : {kField, byteField(9, 4), kVersionText}) {
    tStatus status;
    char buffer = '#';
    uint32_t size = 1;
    provider.getString(field, 0, &buffer, &size, status);
    EXPECT_EQ(status.code, -240060);
    EXPECT_STREQ(status.file, "load");
    EXPECT_EQ(buffer, '#');
    EXPECT_EQ(size, 1u);
  }
  EXPECT_EQ(provider.loads(), 3);
}

}  // namespace
}  // namespace nTests
