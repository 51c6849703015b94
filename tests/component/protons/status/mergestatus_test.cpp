#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <ostream>
#include <string>

#include "tests/component/protons/status/tstatusbytes.h"
#include "zoapal/protons/status/tstatus.h"

namespace nTests {
namespace {

using nZOAPALS100::mergeStatus;
using nZOAPALS100::tStatus;

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
  EXPECT_EQ(status.code, 0);
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

TEST_P(MergeRule, Record_KeepsOrTakesCodeAndLocationTogether) {
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

TEST(MergeStatus, LocationRecord_IsTakenOverWithItsComponent) {
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

TEST_P(FileLength, UpToAHundredCharacters_IsStoredWhole) {
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

TEST_P(ShortStructSize, InAFullSizedBuffer_TakesTheCodeAndNothingElse) {
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

TEST_P(FullStructSize, TakesTheLocationAndLeavesWhatFollows) {
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

}  // namespace
}  // namespace nTests
