// The fixture of tests that use the fake Windows.
#ifndef TESTS_FAKEWINDOWS_FAKEWINDOWSTEST_H
#define TESTS_FAKEWINDOWS_FAKEWINDOWSTEST_H

#include <gtest/gtest.h>

#include <optional>

#include "tests/fakewindows/com.h"
#include "tests/fakewindows/disk.h"
#include "tests/fakewindows/faultplan.h"
#include "tests/fakewindows/machine.h"
#include "tests/fakewindows/objects.h"
#include "tests/fakewindows/processes.h"
#include "tests/fakewindows/scheduler.h"
#include "tests/fakewindows/threads.h"

namespace nFakeWindows {

// Starts with the default machine and no plan; fails if an object is left open.
class FakeWindowsTest : public testing::Test {
 protected:
  void SetUp() override {
    faultPlan().reset();
    machine().reset();
    com()->reset();
    programs().reset();
    disk().reset();
    objects().repeatCompletions(1);
    objects().useFinalStatus(finalStatusOfThisRun());
    static_cast<void>(objects().takeLostPackets());
    criticalSectionsBefore_ = criticalSections();
    ASSERT_EQ(objects().open(), std::vector<std::string>()) << "left open by an earlier test";
  }
  void TearDown() override {
    virtualTime_.reset();
    // The thread sanitizer delays the end of a program with threads.
    scheduler().endIdleThreads();
    objects().waitForThreads();
    EXPECT_EQ(objects().open(), std::vector<std::string>()) << "left open";
    EXPECT_EQ(com()->open(), std::vector<std::string>()) << "left alive";
    EXPECT_EQ(criticalSections(), criticalSectionsBefore_);
    EXPECT_EQ(moduleReferences(), 0) << "a thread that has ended still holds the module";
    faultPlan().reset();
  }

  // From now on one thread of the test runs at a time, and waits take no time. The test starts its
  // threads with the scheduler.
  void useVirtualTime() { virtualTime_.emplace(); }

 private:
  int criticalSectionsBefore_ = 0;
  std::optional<tVirtualTime> virtualTime_;
};

}  // namespace nFakeWindows

#endif
