#include "zoapal/protons/trace/assertion.h"

#include <gtest/gtest.h>

#include <csignal>

#include "tests/fakewindows/debuggeroutput.h"

namespace nTests {
namespace {

using nQUENRA1400::nZOAPAL000::assertionFailed;

// The whole of what the process says.
constexpr const char* kLine = "^\\[quenra\\|tArray\\|64\\] !!ASSERT!!\n$";
constexpr int kExitCode = 3;  // the low byte of STATUS_BREAKPOINT

struct tFarewell {
  ~tFarewell() { std::fputs("unwound\n", stderr); }
};

void failAssertion() {
  const tFarewell farewell;
  nFakeWindows::showDebuggerOutput();
  assertionFailed("quenra", "tArray", 64, "ASSERT(n <= kMaxSize)");
}

class Assertion : public testing::Test {
 protected:
  // The child is started anew instead of being forked off a process with threads.
  void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(Assertion, Failed_PrintsItsLineAndStopsAtABreakpoint) {
  EXPECT_EXIT(failAssertion(), testing::KilledBySignal(SIGTRAP), kLine);
}

TEST_F(Assertion, FailedUnderADebuggerThatGoesOn_EndsAllTheSame) {
  EXPECT_EXIT(
      {
        std::signal(SIGTRAP, SIG_IGN);
        failAssertion();
      },
      testing::ExitedWithCode(kExitCode), kLine);
}

}  // namespace
}  // namespace nTests
