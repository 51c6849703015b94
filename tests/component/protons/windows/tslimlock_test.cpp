#include "zoapal/protons/synchronization/windowsu/locks.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <thread>

namespace nTests {
namespace {

using nQUENRA1400::nZOAPAL000::tGuard;
using nQUENRA1400::nZOAPAL000::tSharedGuard;
using nQUENRA1400::nZOAPAL000::tSlimLock;

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
