#include "zoapal/protons/status/tstatus.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "tests/component/commandline/repositoryfile.h"

namespace nTests {
namespace {

using nZOAPALS100::mergeStatus;
using nZOAPALS100::mergeWin32Error;
using nZOAPALS100::mergeWin32Failure;
using nZOAPALS100::statusOfWin32Error;
using nZOAPALS100::tStatus;

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
  EXPECT_EQ(status.code, -52009);
  EXPECT_STREQ(status.file, "other file");
}

TEST(Win32Failure, WithoutAnError_IsAGenericFailure) {
  tStatus status;
  mergeWin32Failure(0, status, {"some file", 77});
  EXPECT_EQ(status.code, -52003);
  EXPECT_STREQ(status.component, "quenra");
  EXPECT_STREQ(status.file, "some file");
  EXPECT_EQ(status.line, 77u);
}

TEST(Win32Failure, WithAnError_HasItsCode) {
  tStatus status;
  mergeWin32Failure(170, status, {"some file", 77});
  EXPECT_EQ(status.code, -52031);
}

}  // namespace
}  // namespace nTests
