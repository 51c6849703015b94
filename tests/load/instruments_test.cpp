// The watchdog and the table of a soak.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <string_view>
#include <utility>

#include "tests/load/loadthread.h"
#include "tests/load/soaktable.h"

namespace nTests {
namespace {

using testing::HasSubstr;

// ---- The watchdog ----

using std::chrono::milliseconds;
using std::chrono::seconds;
class Watchdog : public testing::Test {
 protected:
  Watchdog() {
    first.enter(tStep::reserve);
    second.enter(tStep::program);
    watchdog.watch("first", first);
    watchdog.watch("second", second);
    EXPECT_FALSE(watchdog.hasStuckThread(start));
  }

  tProgress first;
  tProgress second;
  tWatchdog watchdog{seconds(10)};
  tWatchdog::tClock::time_point start = tWatchdog::tClock::now();
};

TEST_F(Watchdog, ProgressingThreads_AreNotStuck) {
  for (int i = 1; i < 10; ++i) {
    first.enter(tStep::reserve);
    second.enter(tStep::program);
    EXPECT_FALSE(watchdog.hasStuckThread(start + i * seconds(9)));
  }
}

TEST_F(Watchdog, ThreadWithoutProgress_IsStuckAfterTheTimeout) {
  second.enter(tStep::unreserve);
  EXPECT_FALSE(watchdog.hasStuckThread(start + seconds(9)));
  EXPECT_TRUE(watchdog.hasStuckThread(start + seconds(11)));
}

TEST_F(Watchdog, ThreadThatProgressesAgain_IsNoLongerStuck) {
  second.enter(tStep::program);
  EXPECT_TRUE(watchdog.hasStuckThread(start + seconds(11)));
  first.enter(tStep::program);
  second.enter(tStep::program);
  EXPECT_FALSE(watchdog.hasStuckThread(start + seconds(12)));
}

TEST_F(Watchdog, EndedThread_IsNeverStuck) {
  first.enter(tStep::ended);
  second.enter(tStep::ended);
  EXPECT_FALSE(watchdog.hasStuckThread(start + seconds(60)));
}

TEST_F(Watchdog, Report_ListsTheStepOfEveryThread) {
  second.enter(tStep::unreserve);
  EXPECT_FALSE(watchdog.hasStuckThread(start + seconds(5)));
  EXPECT_TRUE(watchdog.hasStuckThread(start + seconds(11)));
  const std::string report = watchdog.report(start + seconds(11) + milliseconds(500));
  EXPECT_THAT(report, HasSubstr("first: reserving a route for 1"));
  EXPECT_THAT(report, HasSubstr(" s, step 1  <- stuck\n"));
  EXPECT_THAT(report, HasSubstr("second: unreserving a route for 6.5 s, step 2\n"));
}

// ---- The table of a soak ----

constexpr size_t kRows = 30;

tHandleCounts handlesOf(std::initializer_list<std::pair<std::string_view, uint32_t>> kinds) {
  tHandleCounts handles{};
  for (const auto& [kind, count] : kinds) {
    handles[indexOfHandleKind(kind)] = count;
  }
  return handles;
}

uint32_t& handlesOf(tSoakRow& row, std::string_view kind) {
  return row.handles[indexOfHandleKind(kind)];
}

// Rows of a run without growth except for the changes by `change`.
template <class Change>
std::vector<tSoakRow> rowsWith(Change change) {
  std::vector<tSoakRow> rows;
  for (uint32_t i = 0; i < kRows; ++i) {
    tSoakRow row{static_cast<double>(i),
                 uint64_t{100} * i,
                 0,
                 {19, 26000},
                 {450, 340000},
                 handlesOf({{"File", 5}, {"Key", 14}}),
                 {152, 23000}};
    change(row, i);
    rows.push_back(row);
  }
  return rows;
}

std::string excessiveGrowthOf(const std::vector<tSoakRow>& rows) {
  return excessiveGrowth(growthOf(rows));
}

TEST(SoakTable, FlatMeasurements_ShowNoGrowth) {
  EXPECT_EQ(excessiveGrowthOf(rowsWith([](tSoakRow&, uint32_t) {})), "");
}

TEST(SoakTable, WarmUp_IsNotGrowth) {
  EXPECT_EQ(excessiveGrowthOf(rowsWith([](tSoakRow& row, uint32_t i) {
              row.own.privateKib -= i < 2 ? 9000 : 0;
              handlesOf(row, "File") -= i < 2 ? 3 : 0;
              row.heap.blocks -= i < 2 ? 200 : 0;
            })),
            "");
}

TEST(SoakTable, Spikes_AreNotGrowth) {
  EXPECT_EQ(excessiveGrowthOf(rowsWith([](tSoakRow& row, uint32_t i) {
              row.own.privateKib += i % 3 == 2 ? uint64_t{100} * i : 0;
              handlesOf(row, "File") += i % 3 == 2 ? i : 0;
              row.heap.blocks += i % 3 == 2 ? uint64_t{9} * i : 0;
            })),
            "");
}

TEST(SoakTable, LateSystemObjects_AreNotGrowth) {
  EXPECT_EQ(excessiveGrowthOf(rowsWith([](tSoakRow& row, uint32_t i) {
              handlesOf(row, "Directory") += i > 15 ? 1 : 0;
              handlesOf(row, "Event") += i > 15 ? 1 : 0;
              handlesOf(row, "Mutant") += i > 15 ? 1 : 0;
              handlesOf(row, "Semaphore") += i > 15 ? 4 : 0;
            })),
            "");
}

TEST(SoakTable, LateHandleOfAnotherKind_IsGrowth) {
  for (const std::string_view kind : {"File", "IoCompletion", "Key", "Process", "Thread"}) {
    EXPECT_EQ(excessiveGrowthOf(rowsWith(
                  [kind](tSoakRow& row, uint32_t i) { handlesOf(row, kind) += i > 15 ? 1 : 0; })),
              "1 more handles: " + std::string(kind) + '\n');
  }
}

TEST(SoakTable, LeakedHandles_AreGrowth) {
  for (const std::string_view kind : kHandleKinds) {
    EXPECT_EQ(excessiveGrowthOf(
                  rowsWith([kind](tSoakRow& row, uint32_t i) { handlesOf(row, kind) += i; })),
              "18 more handles: " + std::string(kind) + '\n');
  }
  EXPECT_EQ(excessiveGrowthOf(rowsWith([](tSoakRow& row, uint32_t i) { row.driver.handles += i; })),
            "18 more handles of the driver\n");
}

TEST(SoakTable, LeakedBlocks_AreGrowth) {
  EXPECT_EQ(excessiveGrowthOf(rowsWith([](tSoakRow& row, uint32_t i) { row.heap.blocks += i; })),
            "18 more blocks of the heaps\n");
}

TEST(SoakTable, SteadilyGrowingMemory_IsGrowth) {
  EXPECT_EQ(excessiveGrowthOf(rowsWith(
                [](tSoakRow& row, uint32_t i) { row.own.privateKib += uint64_t{100} * i; })),
            "1800 more KiB of private memory\n");
  EXPECT_EQ(excessiveGrowthOf(rowsWith(
                [](tSoakRow& row, uint32_t i) { row.driver.privateKib += uint64_t{100} * i; })),
            "1800 more KiB of the driver\n");
}

TEST(SoakTable, SingleStep_IsNotGrowth) {
  for (const size_t step : {5u, 15u, 25u}) {
    EXPECT_EQ(excessiveGrowthOf(rowsWith([step](tSoakRow& row, uint32_t i) {
                row.own.privateKib += i > step ? 5000 : 0;
              })),
              "");
  }
}

TEST(SoakTable, Handles_AreReportedByKind) {
  EXPECT_EQ(handleText(handlesOf({{"Key", 14}, {"File", 5}, {"Odd", 1}})),
            "File 5, Key 14, another kind 1");
  EXPECT_EQ(handleText(handlesOf({})), "");
}

TEST(SoakTable, LongRun_OmitsRows) {
  std::vector<tSoakRow> rows = rowsWith([](tSoakRow&, uint32_t) {});
  for (int i = 0; i < 5; ++i) {
    rows.insert(rows.end(), rows.begin(), rows.end());
  }
  const std::string table = soakTable(rows);
  EXPECT_LE(std::count(table.begin(), table.end(), '\n'), 25);
  EXPECT_THAT(
      table,
      HasSubstr("    0 s          0          0       19          450       332        26000"));
}

}  // namespace
}  // namespace nTests
