// The strings of a table and the version text, in buffers of every size.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "tests/builders/smbiostablebuilder.h"
#include "tests/component/zosmbios/ttestprovider.h"
#include "zosmbios/fieldid.h"

namespace nTests {
namespace {

using nZOAPALS100::tStatus;
using namespace nQUENRA1400::nZOSMBIOS_1_1;
using tStrings = std::vector<std::string>;

constexpr tFieldId kField = textField(9, 4);

// ---- Strings of a structure ----

// A structure of type 9 whose byte at offset 4 is the number of a string.
std::vector<uint8_t> structureWith(uint8_t number, const tStrings& strings) {
  return tSmbiosTableBuilder().structure(9, {number}, strings).build();
}

tStringRead readFrom(const std::vector<uint8_t>& table) {
  tTestProvider provider(table);
  return readString(provider, kField);
}

tStringRead malformed(uint32_t line) {
  return {QUENRA_STATUS_SMBIOS_MALFORMED, line, kUntouched};
}

TEST(GetString, EveryNumberOfTheSet_ReturnsItsString) {
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
  EXPECT_EQ(readFrom(structureWith(0, {})), (tStringRead{QUENRA_STATUS_SMBIOS_NO_STRING, 378, ""}));
  EXPECT_EQ(readFrom(structureWith(0, {"unused"})),
            (tStringRead{QUENRA_STATUS_SMBIOS_NO_STRING, 378, ""}));
}

TEST(GetString, NumberZeroWithoutSpace_IsAWarningAlone) {
  tTestProvider provider(structureWith(0, {}));
  tStatus status;
  char buffer = '#';
  uint32_t size = 0;
  provider.getString(kField, 0, &buffer, &size, status);
  EXPECT_EQ(status.code, QUENRA_STATUS_SMBIOS_NO_STRING);
  EXPECT_EQ(buffer, '#');
  EXPECT_EQ(size, 0u);
}

TEST(GetString, NumberZeroWithoutABuffer_IsAWarningAlone) {
  tTestProvider provider(structureWith(0, {}));
  tStatus status;
  uint32_t size = 10;
  provider.getString(kField, 0, nullptr, &size, status);
  EXPECT_EQ(status.code, QUENRA_STATUS_SMBIOS_NO_STRING);
  EXPECT_EQ(size, 10u);
}

TEST(GetString, NumberZeroWithOneByte_StoresTheNulAlone) {
  tTestProvider provider(structureWith(0, {}));
  tStatus status;
  const auto buffer = std::make_unique<char[]>(1);
  buffer[0] = '#';
  uint32_t size = 1;
  provider.getString(kField, 0, buffer.get(), &size, status);
  EXPECT_EQ(status.code, QUENRA_STATUS_SMBIOS_NO_STRING);
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
        tUnended{"NumberTwoPastTheTable", {9, 5, 0, 0, 2}, malformed(394)},
        tUnended{"NumberTwoPastAStringWithoutNul", {9, 5, 0, 0, 2, 'a'}, malformed(394)},
        tUnended{"NumberThreePastTheLastString", {9, 5, 0, 0, 3, 'a', 0}, malformed(394)},
        tUnended{"NumberThreePastTheSetsEnd", {9, 5, 0, 0, 3, 'a', 0, 0}, malformed(405)}),
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

TEST(GetString, LongStringBeforeIt_IsSkipped) {
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
    EXPECT_EQ(readString(provider, width << 16 | 0x0904),
              (tStringRead{QUENRA_STATUS_SMBIOS_NOT_FOUND, 497, kUntouched}));
  }
}

TEST(GetString, BitsAboveTheWidthClass_AreIgnored) {
  tTestProvider provider(structureWith(1, {"text"}));
  EXPECT_EQ(readString(provider, 0xFFF00000 | kField), (tStringRead{0, 0, "text"}));
}

TEST(GetString, MissingStructure_IsNotFound) {
  tTestProvider provider(structureWith(1, {"text"}));
  EXPECT_EQ(readString(provider, kField, 1),
            (tStringRead{QUENRA_STATUS_SMBIOS_NOT_FOUND, 860, kUntouched}));
  EXPECT_EQ(readString(provider, textField(10, 4)),
            (tStringRead{QUENRA_STATUS_SMBIOS_NOT_FOUND, 860, kUntouched}));
}

TEST(GetString, FieldBeyondTheStructure_IsNotFound) {
  tTestProvider provider(structureWith(1, {"text"}));
  EXPECT_EQ(readString(provider, textField(9, 5)),
            (tStringRead{QUENRA_STATUS_SMBIOS_NOT_FOUND, 235, kUntouched}));
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

TEST(GetString, FailedLoad_ReturnsItsCodeForEveryClassAndIsTriedAgain) {
  tTestProvider provider;
  provider.loadWillFail(QUENRA_STATUS_SMBIOS_NO_TABLE);
  for (const tFieldId field : {kField, byteField(9, 4), kVersionText}) {
    tStatus status;
    char buffer = '#';
    uint32_t size = 1;
    provider.getString(field, 0, &buffer, &size, status);
    EXPECT_EQ(status.code, QUENRA_STATUS_SMBIOS_NO_TABLE);
    EXPECT_STREQ(status.file, "load");
    EXPECT_EQ(buffer, '#');
    EXPECT_EQ(size, 1u);
  }
  EXPECT_EQ(provider.loads(), 3);
}

// ---- Buffer sizes ----

class StringSize : public testing::Test {
 protected:
  static constexpr uint32_t kNeeded = 6;  // "hello" and its NUL

  struct tOutcome {
    int32_t code;
    uint32_t line;
    uint32_t size;
    std::string bytes;
    bool operator==(const tOutcome&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const tOutcome& outcome) {
      return out << "code " << outcome.code << " of line " << outcome.line << ", size "
                 << outcome.size << ", '" << outcome.bytes << "'";
    }
  };
  // Reads into a buffer of exactly the size.
  tOutcome readWith(uint32_t size) {
    const auto buffer = std::make_unique<char[]>(size);
    std::fill_n(buffer.get(), size, '#');
    tStatus status;
    uint32_t inOut = size;
    provider_.getString(kField, 0, buffer.get(), &inOut, status);
    return {status.code, status.line, inOut, std::string(buffer.get(), size)};
  }

  tTestProvider provider_{tSmbiosTableBuilder().structure(9, {1}, {"hello"}).build()};
};

TEST_F(StringSize, TooSmall_ReportsTheRequiredSizeAndStoresNothing) {
  for (uint32_t size = 0; size < kNeeded; ++size) {
    EXPECT_EQ(readWith(size), (tOutcome{QUENRA_STATUS_SMBIOS_BUFFER_TOO_SMALL, 486, kNeeded,
                                        std::string(size, '#')}));
  }
}

TEST_F(StringSize, ExactSize_HoldsTextAndNul) {
  EXPECT_EQ(readWith(kNeeded), (tOutcome{0, 0, kNeeded, std::string("hello\0", kNeeded)}));
}

TEST_F(StringSize, MoreThanNeeded_KeepsSizeAndRest) {
  EXPECT_EQ(readWith(9), (tOutcome{0, 0, 9, std::string("hello\0###", 9)}));
}

TEST_F(StringSize, ReportedSize_SufficesForTheSecondCall) {
  tStatus first;
  uint32_t size = 0;
  provider_.getString(kField, 0, nullptr, &size, first);
  ASSERT_EQ(first.code, QUENRA_STATUS_SMBIOS_BUFFER_TOO_SMALL);
  EXPECT_EQ(readWith(size), (tOutcome{0, 0, kNeeded, std::string("hello\0", kNeeded)}));
}

TEST_F(StringSize, NoBufferOfSufficientSize_IsAnInvalidParameter) {
  tStatus status;
  uint32_t size = kNeeded;
  provider_.getString(kField, 0, nullptr, &size, status);
  EXPECT_EQ(status.code, QUENRA_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(status.line, 487u);
  EXPECT_EQ(size, kNeeded);
}

TEST_F(StringSize, NoSize_IsAnInvalidParameter) {
  tStatus status;
  char buffer = '#';
  provider_.getString(kField, 0, &buffer, nullptr, status);
  EXPECT_EQ(status.code, QUENRA_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(status.line, 488u);
  EXPECT_EQ(buffer, '#');
}

// ---- The version text ----

const std::vector<uint8_t> kTable{127, 4, 0, 0, 0, 0};

TEST(VersionText, Installed_IsRead) {
  tTestProvider provider(kTable, "3.4");
  EXPECT_EQ(readString(provider, 0xF0001), (tStringRead{0, 0, "3.4"}));
  EXPECT_STREQ(provider.versionText(), "3.4");
}

TEST(VersionText, Empty_IsAnEmptyTextWithoutWarning) {
  tTestProvider provider(kTable, "");
  EXPECT_EQ(readString(provider, 0xF0001), (tStringRead{0, 0, ""}));
}

struct tVersion {
  size_t handedOver;
  size_t kept;
};

std::ostream& operator<<(std::ostream& out, const tVersion& version) {
  return out << version.handedOver << " bytes";
}

class VersionLength : public testing::TestWithParam<tVersion> {};

TEST_P(VersionLength, WithoutNul_KeepsAtMost255Bytes) {
  tTestProvider provider(kTable, std::string(GetParam().handedOver, 'v'));
  EXPECT_EQ(readString(provider, 0xF0001), (tStringRead{0, 0, std::string(GetParam().kept, 'v')}));
}

TEST_P(VersionLength, LongerTextBefore_LeavesNothing) {
  tTestProvider provider(kTable, std::string(255, 'x'));
  tStatus status;
  provider.install(kTable, std::string(GetParam().handedOver, 'v'), status);
  EXPECT_EQ(provider.versionText(), std::string(GetParam().kept, 'v'));
}

INSTANTIATE_TEST_SUITE_P(Bytes, VersionLength,
                         testing::Values(tVersion{0, 0}, tVersion{1, 1}, tVersion{254, 254},
                                         tVersion{255, 255}, tVersion{256, 255},
                                         tVersion{1024, 255}));

TEST(VersionText, Nul_EndsIt) {
  tTestProvider provider(kTable, std::string_view("3.4\0more", 8));
  EXPECT_EQ(readString(provider, 0xF0001).text, "3.4");
}

TEST(VersionText, AnyOtherByte_IsPartOfIt) {
  std::string text;
  for (int byte = 1; byte < 256; ++byte) {
    text += static_cast<char>(byte);
  }
  tTestProvider provider(kTable, text);
  EXPECT_EQ(provider.versionText(), text);
}

TEST(VersionText, NulAtByte255And256_AreTheSame) {
  for (const size_t nul : {254u, 255u}) {
    std::string text(300, 'v');
    text[nul] = '\0';
    tTestProvider provider(kTable, text);
    EXPECT_EQ(provider.versionText(), std::string(nul, 'v'));
  }
}

TEST(VersionText, BufferOneByteTooSmall_ReportsTheRequiredSize) {
  tTestProvider provider(kTable, "3.4");
  const auto buffer = std::make_unique<char[]>(3);
  buffer[0] = '#';
  tStatus status;
  uint32_t size = 3;
  provider.getString(0xF0001, 0, buffer.get(), &size, status);
  EXPECT_EQ(status.code, QUENRA_STATUS_SMBIOS_BUFFER_TOO_SMALL);
  EXPECT_EQ(status.line, 314u);
  EXPECT_EQ(size, 4u);
  EXPECT_EQ(buffer[0], '#');
}

TEST(VersionText, ExactBuffer_HoldsTextAndNul) {
  tTestProvider provider(kTable, "3.4");
  const auto buffer = std::make_unique<char[]>(4);
  tStatus status;
  uint32_t size = 4;
  provider.getString(0xF0001, 0, buffer.get(), &size, status);
  EXPECT_EQ(status.code, 0);
  EXPECT_STREQ(buffer.get(), "3.4");
}

TEST(VersionText, SizeZero_NeedsNoBuffer) {
  tTestProvider provider(kTable, "3.4");
  tStatus status;
  uint32_t size = 0;
  provider.getString(0xF0001, 0, nullptr, &size, status);
  EXPECT_EQ(status.code, QUENRA_STATUS_SMBIOS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 4u);
}

TEST(VersionText, NoBufferOfSufficientSize_IsAnInvalidParameter) {
  tTestProvider provider(kTable, "3.4");
  tStatus status;
  uint32_t size = 4;
  provider.getString(0xF0001, 0, nullptr, &size, status);
  EXPECT_EQ(status.code, QUENRA_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(status.line, 302u);
}

TEST(VersionText, AnyOtherInstance_IsNotFound) {
  tTestProvider provider(kTable, "3.4");
  EXPECT_EQ(readString(provider, 0xF0001, 1),
            (tStringRead{QUENRA_STATUS_SMBIOS_NOT_FOUND, 287, kUntouched}));
  EXPECT_EQ(readString(provider, 0xF0002, 1),
            (tStringRead{QUENRA_STATUS_SMBIOS_NOT_FOUND, 287, kUntouched}));
}

TEST(VersionText, OtherProviderValues_AreNotFound) {
  tTestProvider provider(kTable, "3.4");
  for (const tFieldId field : {0xF0000u, 0xF0002u, 0xF0101u, 0xFFFFFu}) {
    EXPECT_EQ(readString(provider, field),
              (tStringRead{QUENRA_STATUS_SMBIOS_NOT_FOUND, 325, kUntouched}));
  }
}

TEST(VersionText, BitsAboveTheWidthClass_AreIgnored) {
  tTestProvider provider(kTable, "3.4");
  EXPECT_EQ(readString(provider, 0xFFFF0001), (tStringRead{0, 0, "3.4"}));
}

TEST(VersionText, WithoutATable_IsLoaded) {
  tTestProvider provider;
  provider.loadWill(kTable);
  EXPECT_EQ(readString(provider, 0xF0001).text, "2.8");
  EXPECT_EQ(provider.loads(), 1);
}

}  // namespace
}  // namespace nTests
