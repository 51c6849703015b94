#include "tests/component/protons/trace/debuggerlistener.h"
#include "tests/fakewindows/fakewindowstest.h"
#include "zoapal/protons/trace/ttrace.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::tCall;
using nQUENRA1400::nZOAPAL000::tConsoleTraceDestination;
using nQUENRA1400::nZOAPAL000::tTrace;

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
