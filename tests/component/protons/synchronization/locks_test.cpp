#include "zoapal/protons/synchronization/windowsu/locks.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <thread>

#include "quenra_status.h"
#include "tests/fakewindows/fakewindowstest.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::tCall;
using nQUENRA1400::nZOAPAL000::tCriticalSection;
using nQUENRA1400::nZOAPAL000::tGuard;
using nQUENRA1400::nZOAPAL000::tSharedGuard;
using nQUENRA1400::nZOAPAL000::tSlimLock;

// ---- Critical sections ----

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

TEST_F(CriticalSection, CreationThatFails_ReportsItsLocationAndIsNotDestroyed) {
  faultPlan().failCall(tCall::initializeCriticalSectionEx, 1, ERROR_NOT_ENOUGH_MEMORY);
  tCriticalSection section;
  nZOAPALS100::tStatus status;
  section.initialise(status);
  EXPECT_FALSE(section.isInitialised());
  EXPECT_EQ(status.code, QUENRA_STATUS_MEMORY_FULL);
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

// ---- Reader/writer locks ----

constexpr auto kTimeout = std::chrono::seconds(10);

TEST(SlimLock, TwoReaders_HoldItAtTheSameTime) {
  tSlimLock lock;
  std::promise<void> entered;
  std::future<void> hasEntered = entered.get_future();
  std::thread reader;
  {
    const tSharedGuard guard(lock);
    reader = std::thread([&] {
      const tSharedGuard second(lock);
      entered.set_value();
    });
    EXPECT_EQ(hasEntered.wait_for(kTimeout), std::future_status::ready);
  }
  reader.join();
}

TEST(SlimLock, Writer_ExcludesReadersAndWriters) {
  constexpr int kRounds = 1000;
  tSlimLock lock;
  std::atomic<bool> writing = false;
  std::atomic<bool> overlapped = false;
  int written = 0;
  const auto write = [&] {
    for (int i = 0; i < kRounds; ++i) {
      const tGuard guard(lock);
      overlapped = overlapped || writing.exchange(true);
      ++written;
      std::this_thread::yield();
      writing = false;
    }
  };
  const auto read = [&] {
    for (int i = 0; i < kRounds; ++i) {
      const tSharedGuard guard(lock);
      overlapped = overlapped || writing;
    }
  };
  std::thread firstReader(read);
  std::thread secondReader(read);
  std::thread otherWriter(write);
  write();
  firstReader.join();
  secondReader.join();
  otherWriter.join();
  EXPECT_FALSE(overlapped);
  EXPECT_EQ(written, 2 * kRounds);
}

}  // namespace
}  // namespace nTests
