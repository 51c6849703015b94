#include "tests/load/loadthread.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nTests {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::HasSubstr;

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

}  // namespace
}  // namespace nTests
