#include "tests/load/soaktable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace nTests {
namespace {

using testing::HasSubstr;

constexpr size_t kRows = 30;

// Rows of a run in which nothing grows but what `change` makes of them.
template <class Change>
std::vector<tSoakRow> rowsWith(Change change) {
  std::vector<tSoakRow> rows;
  for (uint32_t i = 0; i < kRows; ++i) {
    tSoakRow row{
        static_cast<double>(i), uint64_t{100} * i, 0, {32, 26000, 40000}, {152, 23000, 30000}};
    change(row, i);
    rows.push_back(row);
  }
  return rows;
}

std::string complaintsOf(const std::vector<tSoakRow>& rows) {
  return growthComplaints(growthOf(rows));
}

TEST(SoakTable, FlatMeasurements_GiveNoComplaint) {
  EXPECT_EQ(complaintsOf(rowsWith([](tSoakRow&, uint32_t) {})), "");
}

TEST(SoakTable, WarmUp_IsNotGrowth) {
  EXPECT_EQ(complaintsOf(rowsWith([](tSoakRow& row, uint32_t i) {
              row.own.privateKib -= i < 2 ? 9000 : 0;
              row.own.handles -= i < 2 ? 9 : 0;
            })),
            "");
}

TEST(SoakTable, Spikes_AreNotGrowth) {
  EXPECT_EQ(complaintsOf(rowsWith([](tSoakRow& row, uint32_t i) {
              row.own.privateKib += i % 3 == 2 ? uint64_t{100} * i : 0;
              row.own.handles += i % 3 == 2 ? 1 : 0;
            })),
            "");
}

TEST(SoakTable, HandlesThatComeLate_AreNotGrowth) {
  EXPECT_EQ(complaintsOf(rowsWith([](tSoakRow& row, uint32_t i) { row.own.handles += i / 4; })),
            "");
}

TEST(SoakTable, HandlesThatAreLeaked_AreAComplaint) {
  EXPECT_EQ(complaintsOf(rowsWith([](tSoakRow& row, uint32_t i) { row.own.handles += i; })),
            "18 more handles\n");
  EXPECT_EQ(complaintsOf(rowsWith([](tSoakRow& row, uint32_t i) { row.driver.handles += i; })),
            "18 more handles of the driver\n");
}

TEST(SoakTable, MemoryThatGrowsAllTheTime_IsAComplaint) {
  EXPECT_EQ(complaintsOf(rowsWith(
                [](tSoakRow& row, uint32_t i) { row.own.privateKib += uint64_t{100} * i; })),
            "1800 more KiB of private memory\n");
  EXPECT_EQ(complaintsOf(rowsWith(
                [](tSoakRow& row, uint32_t i) { row.driver.privateKib += uint64_t{100} * i; })),
            "1800 more KiB of the driver\n");
}

TEST(SoakTable, OneStepUp_IsNotGrowth) {
  for (const size_t step : {5u, 15u, 25u}) {
    EXPECT_EQ(complaintsOf(rowsWith([step](tSoakRow& row, uint32_t i) {
                row.own.privateKib += i > step ? 5000 : 0;
              })),
              "");
  }
}

TEST(SoakTable, LongRun_IsThinnedOut) {
  std::vector<tSoakRow> rows = rowsWith([](tSoakRow&, uint32_t) {});
  for (int i = 0; i < 5; ++i) {
    rows.insert(rows.end(), rows.begin(), rows.end());
  }
  const std::string table = soakTable(rows);
  EXPECT_LE(std::count(table.begin(), table.end(), '\n'), 25);
  EXPECT_THAT(table, HasSubstr("    0 s          0          0       32        26000"));
}

}  // namespace
}  // namespace nTests
