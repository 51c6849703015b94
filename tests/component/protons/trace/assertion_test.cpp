#include "zoapal/protons/trace/assertion.h"

#include <gtest/gtest.h>

#include <unistd.h>
#include <csignal>

#include "tests/fakewindows/debugger.h"

namespace nTests {
namespace {

using nFakeWindows::kAssertionExitCode;
using nQUENRA1400::nZOAPAL000::assertionFailed;

// The complete output of the process.
constexpr const char* kLine = "^\\[quenra\\|tArray\\|64\\] !!ASSERT!!\n$";

struct tFarewell {
  ~tFarewell() { std::fputs("unwound\n", stderr); }
};

void failAssertion() {
  const tFarewell farewell;
  nFakeWindows::showDebuggerOutput();
  assertionFailed({"tArray", 64}, "ASSERT(n <= kMaxSize)");
}

class Assertion : public testing::Test {
 protected:
  // Starts the child as a new program: forking a process with threads is unsafe.
  void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(Assertion, FailedWithoutDebugger_PrintsItsLineAndEndsTheProcessWithoutBreakpoint) {
  EXPECT_EXIT(
      {
        std::signal(SIGTRAP, [](int) { _exit(0); });
        failAssertion();
      },
      testing::ExitedWithCode(kAssertionExitCode), kLine);
}

TEST_F(Assertion, FailedUnderDebugger_PrintsItsLineAndStopsAtBreakpoint) {
  EXPECT_EXIT(
      {
        nFakeWindows::attachDebugger();
        failAssertion();
      },
      testing::KilledBySignal(SIGTRAP), kLine);
}

TEST_F(Assertion, FailedUnderDebuggerThatResumes_EndsWithStatusBreakpoint) {
  EXPECT_EXIT(
      {
        nFakeWindows::attachDebugger();
        std::signal(SIGTRAP, SIG_IGN);
        failAssertion();
      },
      testing::ExitedWithCode(kAssertionExitCode), kLine);
}

}  // namespace
}  // namespace nTests
