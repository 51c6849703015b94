// Assertions and failing locks, in the fake Windows.
#include <gtest/gtest.h>

#include <unistd.h>

#include <csignal>

#include "tests/component/protons/trace/debuggerlistener.h"
#include "tests/fakewindows/debugger.h"
#include "tests/fakewindows/fakewindowstest.h"
#include "zoapal/protons/trace/assertion.h"
#include "zoapal/protons/trace/ttrace.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::kAssertionExitCode;
using nFakeWindows::tCall;
using nQUENRA1400::nZOAPAL000::assertionFailed;
using nQUENRA1400::nZOAPAL000::tConsoleTraceDestination;
using nQUENRA1400::nZOAPAL000::tTrace;

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

using TraceFault = nFakeWindows::FakeWindowsTest;

TEST_F(TraceFault, LockThatCannotBeCreated_IsReportedAndTheTraceWritesNothing) {
  tDebuggerListener listener;
  tConsoleTraceDestination destination;
  nZOAPALS100::tStatus status;
  faultPlan().failCall(tCall::initializeCriticalSectionEx, 1, ERROR_NOT_ENOUGH_MEMORY);
  {
    tTrace trace(destination, status);
    EXPECT_EQ(status.code, nZOAPALS100::kMemoryFull);
    trace.write("one");
    trace.writeCounted("two", 3);
  }
  EXPECT_EQ(listener.take(), std::vector<std::string>());
}

TEST_F(TraceFault, DestroyedTrace_LeavesNoLock) {
  tConsoleTraceDestination destination;
  nZOAPALS100::tStatus status;
  const int before = nFakeWindows::criticalSections();
  {
    const tTrace trace(destination, status);
    EXPECT_EQ(nFakeWindows::criticalSections(), before + 1);
  }
  EXPECT_EQ(nFakeWindows::criticalSections(), before);
}

}  // namespace
}  // namespace nTests
