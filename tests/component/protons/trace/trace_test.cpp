#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "quenra_status.h"
#include "tests/component/protons/trace/debuggerlistener.h"
#include "zoapal/protons/trace/ttrace.h"

namespace nTests {
namespace {

using nQUENRA1400::nZOAPAL000::debugPrintf;
using nQUENRA1400::nZOAPAL000::tConsoleTraceDestination;
using nQUENRA1400::nZOAPAL000::tTrace;
using nZOAPALS100::tStatus;
using testing::ElementsAre;
using testing::IsEmpty;

class Trace : public testing::Test {
 protected:
  tDebuggerListener listener;
  tConsoleTraceDestination destination;
};

// ---- debugPrintf ----

TEST_F(Trace, DebugPrintf_FormatsAndAddsNoLineEnd) {
  debugPrintf("%s %d 0x%X %llu", "route", -3, 255u, 18446744073709551615ull);
  EXPECT_THAT(listener.take(), ElementsAre("route -3 0xFF 18446744073709551615"));
}

TEST_F(Trace, DebugPrintf_LongText_IsTruncatedAfter511Characters) {
  for (const size_t length : {size_t{510}, size_t{511}, size_t{512}, size_t{513}, size_t{600}}) {
    std::string text(length, 'x');
    text.front() = 'a';
    text.back() = 'z';
    debugPrintf("%s", text.c_str());
    EXPECT_THAT(listener.take(), ElementsAre(text.substr(0, 511))) << length;
  }
}

TEST_F(Trace, DebugPrintf_LongFormattedText_IsTruncatedAfter511Characters) {
  debugPrintf("%600d", 7);
  EXPECT_THAT(listener.take(), ElementsAre(std::string(511, ' ')));
}

// ---- The destination ----

TEST_F(Trace, Write_TextWithPercentSigns_IsWrittenUnchanged) {
  destination.write("100 %s%n of it");
  EXPECT_THAT(listener.take(), ElementsAre("100 %s%n of it"));
}

TEST_F(Trace, Write_LongText_IsTruncatedAfter511Characters) {
  destination.write(std::string(600, 'x').c_str());
  EXPECT_THAT(listener.take(), ElementsAre(std::string(511, 'x')));
}

TEST_F(Trace, WriteCounted_WritesAtMostTheLength) {
  destination.writeCounted("0123456789", 3);
  destination.writeCounted("0123456789", 0);
  destination.writeCounted("0123456789", 10);
  destination.writeCounted("0123456789", 11);
  EXPECT_THAT(listener.take(), ElementsAre("012", "", "0123456789", "0123456789"));
}

TEST_F(Trace, WriteCounted_ReadsNoBytePastTheLength) {
  const std::vector<char> unterminated{'a', 'b', 'c'};  // a heap block of just these
  destination.writeCounted(unterminated.data(), unterminated.size());
  EXPECT_THAT(listener.take(), ElementsAre("abc"));
}

TEST_F(Trace, WriteCounted_AnyLength_IsLimitedTo511Characters) {
  const std::string text(600, 'x');
  for (const uint64_t length : {uint64_t{511}, uint64_t{512}, uint64_t{1} << 31, uint64_t{1} << 32,
                                uint64_t{1} << 40, std::numeric_limits<uint64_t>::max()}) {
    destination.writeCounted(text.c_str(), length);
    EXPECT_THAT(listener.take(), ElementsAre(std::string(511, 'x'))) << length;
  }
}

TEST_F(Trace, NullText_WritesNothing) {
  destination.write(nullptr);
  destination.writeCounted(nullptr, 5);
  EXPECT_THAT(listener.take(), IsEmpty());
}

TEST_F(Trace, Destination_IsTheAvailableDebuggerOutput) {
  EXPECT_TRUE(destination.isAvailable());
  EXPECT_STREQ(destination.getName(), "zosdbg_printf");
}

TEST_F(Trace, UnusedOperations_DoNothing) {
  destination.unusedThird();
  destination.unusedSixth();
  EXPECT_THAT(listener.take(), IsEmpty());
}

TEST_F(Trace, GetConfiguration_AnySize_CopiesWithinItAndTerminates) {
  constexpr std::string_view kConfiguration = " --destination apal";
  for (int32_t size = 1; size <= 32; ++size) {
    std::vector<char> buffer(static_cast<size_t>(size), '#');
    uint32_t needed = 0;
    char* const end = destination.getConfiguration(buffer.data(), size, &needed);
    const std::string_view copied = kConfiguration.substr(0, static_cast<size_t>(size) - 1);
    EXPECT_EQ(std::string_view(buffer.data()), copied) << size;
    EXPECT_EQ(end, buffer.data() + copied.size()) << size;
    EXPECT_EQ(buffer.back(), '\0') << size;
    EXPECT_EQ(needed, 20u) << size;
  }
}

TEST_F(Trace, GetConfiguration_FiveBytes_ReturnsFourCharacters) {
  char buffer[5] = {};
  uint32_t needed = 0;
  destination.getConfiguration(buffer, sizeof buffer, &needed);
  EXPECT_STREQ(buffer, " --d");
  EXPECT_EQ(needed, 20u);
}

TEST_F(Trace, GetConfiguration_WithoutCapacity_ReportsTheNeededSizeOnly) {
  char buffer[2] = {'#', '#'};
  for (const int32_t size : {0, -1, std::numeric_limits<int32_t>::min()}) {
    uint32_t needed = 0;
    EXPECT_EQ(destination.getConfiguration(buffer, size, &needed), buffer);
    EXPECT_EQ(needed, 20u);
    EXPECT_EQ(buffer[0], '#');
  }
  uint32_t needed = 0;
  EXPECT_EQ(destination.getConfiguration(nullptr, 20, &needed), nullptr);
  EXPECT_EQ(needed, 20u);
}

TEST_F(Trace, GetConfiguration_WithoutNeededSize_CopiesTheText) {
  char buffer[32] = {};
  destination.getConfiguration(buffer, sizeof buffer, nullptr);
  EXPECT_STREQ(buffer, " --destination apal");
}

// ---- The trace ----

TEST_F(Trace, Trace_ForwardsToItsDestination) {
  tStatus status;
  tTrace trace(destination, status);
  ASSERT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  trace.write("one");
  trace.writeCounted("twofold", 3);
  EXPECT_THAT(listener.take(), ElementsAre("one", "two"));
}

TEST_F(Trace, TraceOnAStatusInError_WritesNothing) {
  tStatus status;
  status.code = -1;
  tTrace trace(destination, status);
  trace.write("one");
  EXPECT_EQ(status.code, -1);
  EXPECT_THAT(listener.take(), IsEmpty());
}

// Detects two texts that are written at the same time.
class tWatchfulDestination : public tConsoleTraceDestination {
 public:
  void write(const char*) noexcept override {
    overlapped = overlapped || inside.exchange(true);
    std::this_thread::yield();
    ++texts;
    inside = false;
  }
  void writeCounted(const char* text, uint64_t) noexcept override { write(text); }
  [[nodiscard]] bool isAvailable() const noexcept override { return available; }

  std::atomic<bool> inside = false;
  bool overlapped = false;
  int texts = 0;
  bool available = true;
};

TEST_F(Trace, TextsOfManyThreads_AreWrittenOneAtATime) {
  tWatchfulDestination watchful;
  tStatus status;
  tTrace trace(watchful, status);
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&trace] {
      for (int text = 0; text < 50; ++text) {
        trace.write("x");
        trace.writeCounted("x", 1);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_FALSE(watchful.overlapped);
  EXPECT_EQ(watchful.texts, 800);
}

TEST_F(Trace, UnavailableDestination_ReceivesNothing) {
  tWatchfulDestination watchful;
  watchful.available = false;
  tStatus status;
  tTrace trace(watchful, status);
  trace.write("x");
  EXPECT_EQ(watchful.texts, 0);
}

TEST_F(Trace, DebugPrintfOnManyThreads_MixesNoTexts) {
  std::vector<std::thread> threads;
  for (char letter = 'a'; letter < 'i'; ++letter) {
    threads.emplace_back([letter] {
      for (int text = 0; text < 20; ++text) {
        debugPrintf("%s", std::string(200, letter).c_str());
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  const std::vector<std::string> texts = listener.take();
  EXPECT_EQ(texts.size(), 160u);
  for (const std::string& text : texts) {
    EXPECT_EQ(text, std::string(200, text.front()));
  }
}

}  // namespace
}  // namespace nTests
