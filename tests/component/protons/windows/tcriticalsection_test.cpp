#include "zoapal/protons/synchronization/windowsu/locks.h"

#include <thread>

#include "tests/fakewindows/fakewindowstest.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::tCall;
using nQUENRA1400::nZOAPAL000::tCriticalSection;
using nQUENRA1400::nZOAPAL000::tGuard;

class CriticalSection : public nFakeWindows::FakeWindowsTest {};

TEST_F(CriticalSection, KeepsThreadsApart) {
  tCriticalSection section;
  nZOAPALS100::tStatus status;
  section.initialise(status);
  ASSERT_TRUE(section.isInitialised());
  int count = 0;
  const auto work = [&section, &count] {
    for (int i = 0; i < 1000; ++i) {
      const tGuard lock(section);
      ++count;
    }
  };
  std::thread other(work);
  work();
  other.join();
  EXPECT_EQ(count, 2000);
  section.destroy();
  section.destroy();
  EXPECT_FALSE(section.isInitialised());
}

TEST_F(CriticalSection, ThatCannotBeCreated_IsLocatedAtLine31AndNotDestroyed) {
  faultPlan().failCall(tCall::initializeCriticalSectionEx, 1, ERROR_NOT_ENOUGH_MEMORY);
  tCriticalSection section;
  nZOAPALS100::tStatus status;
  section.initialise(status);
  EXPECT_FALSE(section.isInitialised());
  EXPECT_EQ(status.code, -52000);
  EXPECT_STREQ(status.file, "tcriticalsection");
  EXPECT_EQ(status.line, 31u);
  section.destroy();
}

TEST_F(CriticalSection, OnAStatusInError_IsNotMade) {
  tCriticalSection section;
  nZOAPALS100::tStatus status;
  status.code = -1;
  section.initialise(status);
  EXPECT_FALSE(section.isInitialised());
}

}  // namespace
}  // namespace nTests
