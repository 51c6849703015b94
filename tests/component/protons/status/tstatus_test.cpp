#include "zoapal/protons/status/tstatus.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "quenra_status.h"
#include "tests/builders/repositoryfile.h"
#include "tests/component/protons/status/tstatusbytes.h"

namespace nTests {
namespace {

using nZOAPALS100::mergeStatus;
using nZOAPALS100::mergeWin32Error;
using nZOAPALS100::mergeWin32Failure;
using nZOAPALS100::statusOfWin32Error;
using nZOAPALS100::tFailureRecord;
using nZOAPALS100::tStatus;

// ---- Merging ----

template <size_t N>
bool isZeroFrom(const char (&text)[N], size_t first) {
  return std::all_of(std::begin(text) + first, std::end(text), [](char c) { return c == '\0'; });
}

tStatus statusWith(int32_t code) {
  tStatus status;
  mergeStatus(status, code, "first", "first file", 11);
  return status;
}

std::string lettersOf(size_t length) {
  std::string letters(length, '\0');
  std::generate(letters.begin(), letters.end(),
                [i = 0]() mutable { return static_cast<char>('a' + i++ % 26); });
  return letters;
}

TEST(Status, Fresh_IsAFullEmptyRecord) {
  const tStatus status;
  EXPECT_EQ(status.structSize, 208u);
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  EXPECT_TRUE(isZeroFrom(status.component, 0));
  EXPECT_TRUE(isZeroFrom(status.file, 0));
  EXPECT_EQ(status.line, 0u);
  EXPECT_THAT(status.extension, testing::Each(0u));
}

struct tMerge {
  int32_t current;
  int32_t next;
  bool stored;
};

std::ostream& operator<<(std::ostream& out, const tMerge& merge) {
  return out << merge.next << " on " << merge.current;
}

class MergeRule : public testing::TestWithParam<tMerge> {};

TEST_P(MergeRule, Record_KeepsOrStoresCodeAndLocationTogether) {
  const auto [current, next, stored] = GetParam();
  tStatus status = statusWith(current);
  const tStatus before = status;

  EXPECT_EQ(mergeStatus(status, next, "second", "second file", 22), stored);

  EXPECT_EQ(status.code, stored ? next : before.code);
  EXPECT_STREQ(status.component, stored ? "second" : before.component);
  EXPECT_STREQ(status.file, stored ? "second file" : before.file);
  EXPECT_EQ(status.line, stored ? 22u : before.line);
}

TEST_P(MergeRule, ShortRecord_FollowsTheSameRule) {
  const auto [current, next, stored] = GetParam();
  const tStatusBytes bytes(8, 8, current);
  EXPECT_EQ(mergeStatus(bytes.record(), next, "second", "second file", 22), stored);
  EXPECT_EQ(bytes.code(), stored ? next : current);
}

INSTANTIATE_TEST_SUITE_P(
    All, MergeRule,
    testing::Values(tMerge{0, 0, false}, tMerge{0, 5, true}, tMerge{0, -3, true},
                    tMerge{5, 0, false}, tMerge{5, 7, false}, tMerge{5, 5, false},
                    tMerge{5, -3, true}, tMerge{-3, 0, false}, tMerge{-3, 5, false},
                    tMerge{-3, -9, false}, tMerge{0, INT32_MIN, true}, tMerge{INT32_MAX, -1, true},
                    tMerge{INT32_MIN, -1, false}, tMerge{0, 1, true}, tMerge{1, -1, true},
                    tMerge{1, 2, false}, tMerge{-1, 1, false}, tMerge{-1, -2, false}));

TEST(MergeStatus, NothingStored_LeavesTheExtension) {
  tStatus status = statusWith(-3);
  status.extension[0] = 17;
  EXPECT_FALSE(mergeStatus(status, -9, "", "", 0));
  EXPECT_EQ(status.extension[0], 17u);
}

TEST(MergeStatus, CodeStored_EndsTheExtensionAtItsFirstWord) {
  tStatus status = statusWith(5);
  std::fill(std::begin(status.extension), std::end(status.extension), 17u);
  EXPECT_TRUE(mergeStatus(status, -3, "quenra", "file", 1));
  EXPECT_EQ(status.extension[0], 0u);
}

TEST(MergeStatus, LocationRecord_IsStoredWithItsComponent) {
  tStatus status;
  EXPECT_TRUE(mergeStatus(status, -3, {"some file", 47}));
  EXPECT_STREQ(status.component, "quenra");
  EXPECT_STREQ(status.file, "some file");
  EXPECT_EQ(status.line, 47u);
}

TEST(MergeStatus, NullTexts_CountAsEmpty) {
  tStatus status = statusWith(5);
  EXPECT_TRUE(mergeStatus(status, -3, nullptr, nullptr, 4));
  EXPECT_TRUE(isZeroFrom(status.component, 0));
  EXPECT_TRUE(isZeroFrom(status.file, 0));
  EXPECT_EQ(status.line, 4u);
}

TEST(MergeStatus, RecordsOwnTexts_StayAsTheyAre) {
  tStatus status;
  const std::string file = lettersOf(100);
  mergeStatus(status, 5, "component", file.c_str(), 31);
  EXPECT_TRUE(mergeStatus(status, -3, status.component, status.file, status.line));
  EXPECT_EQ(status.code, -3);
  EXPECT_STREQ(status.component, "component");
  EXPECT_EQ(status.file, file);
  EXPECT_EQ(status.line, 31u);
}

TEST(MergeStatus, TailOfRecordsOwnFile_MovesToItsFront) {
  tStatus status;
  mergeStatus(status, 5, "quenra", "folder\\file", 31);
  EXPECT_TRUE(mergeStatus(status, -3, status.component, status.file + 7, 32));
  EXPECT_STREQ(status.file, "file");
  EXPECT_TRUE(isZeroFrom(status.file, 4));
}

class ComponentLength : public testing::TestWithParam<size_t> {};

TEST_P(ComponentLength, StoresAtMostNineCharactersAndZeros) {
  tStatus status;
  std::fill(std::begin(status.component), std::end(status.component), '#');
  const std::string component = lettersOf(GetParam());
  mergeStatus(status, -3, component.c_str(), "", 0);
  const std::string kept = component.substr(0, 9);
  EXPECT_EQ(status.component, kept);
  EXPECT_TRUE(isZeroFrom(status.component, kept.size()));
}

INSTANTIATE_TEST_SUITE_P(Characters, ComponentLength, testing::Values(0, 1, 8, 9, 10, 11, 300));

class FileLength : public testing::TestWithParam<size_t> {};

TEST_P(FileLength, UpToAHundredCharacters_IsStoredComplete) {
  tStatus status;
  std::fill(std::begin(status.file), std::end(status.file), '#');
  const std::string file = lettersOf(GetParam());
  mergeStatus(status, -3, "", file.c_str(), 0);
  EXPECT_EQ(status.file, file);
  EXPECT_TRUE(isZeroFrom(status.file, file.size()));
}

INSTANTIATE_TEST_SUITE_P(Characters, FileLength, testing::Values(0, 1, 49, 50, 51, 98, 99, 100));

class LongFileLength : public testing::TestWithParam<size_t> {};

TEST_P(LongFileLength, AboveAHundredCharacters_KeepsBothEnds) {
  tStatus status;
  const std::string file = lettersOf(GetParam());
  mergeStatus(status, -3, "", file.c_str(), 0);
  EXPECT_EQ(status.file, file.substr(0, 49) + ".." + file.substr(file.size() - 49));
  EXPECT_EQ(status.file[100], '\0');
}

INSTANTIATE_TEST_SUITE_P(Characters, LongFileLength, testing::Values(101, 102, 149, 200, 5000));

class ShortStructSize : public testing::TestWithParam<uint32_t> {};

TEST_P(ShortStructSize, InAFullSizedBuffer_StoresTheCodeAndNothingElse) {
  const tStatusBytes bytes(208, GetParam());
  EXPECT_TRUE(mergeStatus(bytes.record(), -3, "quenra", "file", 99));
  EXPECT_EQ(bytes.code(), -3);
  EXPECT_TRUE(bytes.isUntouchedFrom(8));
}

INSTANTIATE_TEST_SUITE_P(Bytes, ShortStructSize, testing::Values(0, 4, 8, 100, 207));

TEST(MergeStatus, ShortRecordOfEightBytes_IsNotLeft) {
  const tStatusBytes bytes(8, 8);
  EXPECT_TRUE(mergeStatus(bytes.record(), -3, "quenra", lettersOf(200).c_str(), 99));
  EXPECT_EQ(bytes.code(), -3);
}

class FullStructSize : public testing::TestWithParam<uint32_t> {};

TEST_P(FullStructSize, StoresTheLocationAndLeavesTheBytesAfterIt) {
  const uint32_t structSize = GetParam();
  const tStatusBytes bytes(std::max<size_t>(structSize, 304), structSize);
  EXPECT_TRUE(mergeStatus(bytes.record(), -3, "quenra", "file", 99));
  const tStatus& status = bytes.record();
  EXPECT_EQ(status.structSize, structSize);
  EXPECT_STREQ(status.component, "quenra");
  EXPECT_STREQ(status.file, "file");
  EXPECT_EQ(status.line, 99u);
  EXPECT_EQ(status.extension[0], 0u);
  EXPECT_TRUE(bytes.isUntouchedFrom(208));
}

INSTANTIATE_TEST_SUITE_P(Bytes, FullStructSize, testing::Values(208, 209, 300));

// ---- Errors of Windows ----

struct tTranslation {
  uint32_t win32Error;
  int32_t code;
};

std::ostream& operator<<(std::ostream& out, const tTranslation& row) {
  return out << "error " << row.win32Error << " as " << row.code;
}

class Win32ErrorTable : public testing::TestWithParam<tTranslation> {};

TEST_P(Win32ErrorTable, Error_GivesItsCode) {
  EXPECT_EQ(statusOfWin32Error(GetParam().win32Error), GetParam().code);
}

TEST_P(Win32ErrorTable, MergedIntoACleanRecord_LeavesCodeAndLocation) {
  tStatus status;
  mergeWin32Error(GetParam().win32Error, status, "some file", 77);
  const bool stored = GetParam().code != 0;
  EXPECT_EQ(status.code, GetParam().code);
  EXPECT_STREQ(status.component, stored ? "quenra" : "");
  EXPECT_STREQ(status.file, stored ? "some file" : "");
  EXPECT_EQ(status.line, stored ? 77u : 0u);
}

TEST_P(Win32ErrorTable, MergedIntoAnError_ChangesNothing) {
  tStatus status;
  mergeStatus(status, -1, "first", "first file", 1);
  mergeWin32Error(GetParam().win32Error, status, "some file", 77);
  EXPECT_EQ(status.code, -1);
  EXPECT_STREQ(status.file, "first file");
}

constexpr tTranslation kRows[] = {
    {0, 0},        {997, 52011},   {8, -52000},    {1450, -52000}, {50, -52002},
    {1, -52002},   {31, -52003},   {1117, -52003}, {87, -52005},   {2, -52006},
    {121, -52007}, {1359, -52008}, {5, -52009},    {21, -52010},   {1617, -52020},
    {38, -52012},  {122, -52019},  {639, -52021},  {183, -52013},  {0xE0000204, -52006},
    {258, -52007}, {170, -52031},
};

INSTANTIATE_TEST_SUITE_P(Rows, Win32ErrorTable, testing::ValuesIn(kRows));

INSTANTIATE_TEST_SUITE_P(Unlisted, Win32ErrorTable,
                         testing::Values(tTranslation{3, -52003}, tTranslation{6, -52003},
                                         tTranslation{12345, -52003},
                                         tTranslation{0xE0000205, -52003},
                                         tTranslation{0x204, -52003},
                                         tTranslation{0xFFFFFFFF, -52003}));

TEST(Win32Error, Documentation_HasEveryRowOfTheTable) {
  const std::map<std::string, int64_t> codes =
      enumeratorsOf("include/quenra_status.h", "QUENRA_STATUS_");
  const auto rows = tableUnder("docs/status-codes.md", "## Errors of Windows");
  // The page leaves out success.
  EXPECT_EQ(rows.size() + 1, std::size(kRows));
  for (const std::vector<std::string>& row : rows) {
    const auto error = static_cast<uint32_t>(std::stoul(row[0], nullptr, 0));
    EXPECT_EQ(row[2], std::to_string(statusOfWin32Error(error))) << row[0];
    EXPECT_NE(std::ranges::find(kRows, error, &tTranslation::win32Error), std::end(kRows))
        << row[0];
    ASSERT_TRUE(codes.contains(row[3])) << row[3];
    EXPECT_EQ(row[2], std::to_string(codes.at(row[3]))) << row[0];
  }
}

TEST(Win32Error, PendingOnAWarning_KeepsTheFirstWarning) {
  tStatus status;
  mergeStatus(status, 5, "first", "first file", 1);
  mergeWin32Error(997, status, "some file", 77);
  EXPECT_EQ(status.code, 5);
}

TEST(Win32Error, ErrorOnPending_ReplacesIt) {
  tStatus status;
  mergeWin32Error(997, status, "some file", 77);
  mergeWin32Error(5, status, "other file", 78);
  EXPECT_EQ(status.code, QUENRA_STATUS_ACCESS_DENIED);
  EXPECT_STREQ(status.file, "other file");
}

TEST(Win32Failure, WithoutAnError_IsAGenericFailure) {
  tStatus status;
  mergeWin32Failure(0, status, {"some file", 77});
  EXPECT_EQ(status.code, QUENRA_STATUS_GENERIC_FAILURE);
  EXPECT_STREQ(status.component, "quenra");
  EXPECT_STREQ(status.file, "some file");
  EXPECT_EQ(status.line, 77u);
}

TEST(Win32Failure, WithAnError_HasItsCode) {
  tStatus status;
  mergeWin32Failure(170, status, {"some file", 77});
  EXPECT_EQ(status.code, QUENRA_STATUS_BUSY);
}

// ---- A record that exists from the first failure on ----

TEST(FailureRecord, FirstCode_CreatesIt) {
  tFailureRecord failure;
  EXPECT_FALSE(failure.exists());
  failure.merge(-1, {"some file", 77});
  ASSERT_TRUE(failure.exists());
  EXPECT_EQ(failure.code(), -1);
  EXPECT_STREQ(failure.record().file, "some file");
}

TEST(FailureRecord, FurtherCodes_FollowTheMergeRule) {
  tFailureRecord failure;
  failure.merge(1, {"warning", 1});
  failure.merge(-1, {"error", 2});
  failure.merge(-2, {"second error", 3});
  EXPECT_EQ(failure.code(), -1);
  EXPECT_STREQ(failure.record().file, "error");
  EXPECT_EQ(failure.record().line, 2u);
}

}  // namespace
}  // namespace nTests
