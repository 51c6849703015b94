// Each Windows call of opening a controller fails in turn.
#include "tests/component/session/sessiontest.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::tCall;
using nFakeWindows::tCallRecord;
using nFakeWindows::tCompletion;

// The status of an opening in which one call fails with ERROR_ACCESS_DENIED (-52009). `nth` counts
// the calls of that function.
tOutcome expectedOutcome(tCall call, unsigned nth) {
  const bool ofController = nth == 1;
  switch (call) {
    case tCall::setupDiGetClassDevs:
      return ofController ? sessionFailure(-26932, 222)
                          : tOutcome{-52009, "tdeviceinterfaceiterator", 45};
    case tCall::setupDiEnumDeviceInterfaces:
      // A failed enumeration counts as the end of the list.
      return ofController ? sessionFailure(-26932, 222) : success();
    case tCall::setupDiGetDeviceInterfaceDetail:
      return {-52009, "tdeviceinterfaceiterator", 232};
    case tCall::createFile:
      return {-52009, "tdeviceinterfaceproxy", 43};
    case tCall::createEvent:
      return {-52009, "tdeviceinterfaceproxy", 51};
    case tCall::deviceIoControl:
      return {-52009, "tdeviceinterfaceproxy", 115};
    case tCall::getOverlappedResult:
      return {-52009, "tdeviceinterfaceproxy", 110};
    default:
      // A failed clean-up has no effect.
      return success();
  }
}

class CallFailures : public SessionTest, public testing::WithParamInterface<tCompletion> {
 protected:
  // The calls of an opening that succeeds, in order.
  std::vector<tCallRecord> callsOfOpening() {
    faultPlan().reset();
    faultPlan().complete(GetParam());
    EXPECT_EQ(open(), success());
    return faultPlan().calls();
  }
};

TEST_P(CallFailures, EachGivesItsCodeAndPlace_LeaksNothing_AndTheNextOpenWorks) {
  const std::vector<tCallRecord> calls = callsOfOpening();
  ASSERT_GE(calls.size(), 20u);
  std::map<tCall, unsigned> counts;
  for (unsigned n = 1; n <= calls.size(); ++n) {
    const tCall call = calls[n - 1].call;
    const unsigned nth = ++counts[call];
    SCOPED_TRACE(std::string(nameOf(call)) + ", call " + std::to_string(nth));

    faultPlan().reset();
    faultPlan().complete(GetParam());
    faultPlan().failAnyCall(n, ERROR_ACCESS_DENIED);
    EXPECT_EQ(open(), expectedOutcome(call, nth));
    nFakeWindows::objects().waitForThreads();
    EXPECT_THAT(nFakeWindows::objects().open(), testing::IsEmpty());

    faultPlan().reset();
    EXPECT_EQ(open(), success());
  }
  expectNoLeak();
}

TEST_P(CallFailures, ThroughTheExport_LeaveTheHandleAlone_AndTheNextOpenWorks) {
  const std::vector<tCallRecord> calls = callsOfOpening();
  std::map<tCall, unsigned> counts;
  for (unsigned n = 1; n <= calls.size(); ++n) {
    const tCall call = calls[n - 1].call;
    const int32_t expected = expectedOutcome(call, ++counts[call]).code;
    SCOPED_TRACE(std::string(nameOf(call)) + ", call " + std::to_string(counts[call]));

    faultPlan().reset();
    faultPlan().complete(GetParam());
    faultPlan().failAnyCall(n, ERROR_ACCESS_DENIED);
    uint64_t handle = 17;
    EXPECT_EQ(QUENRA_openController(&handle), expected);
    EXPECT_EQ(handle, expected < 0 ? 17u : QUENRA_HANDLE);
    QUENRA_closeController(QUENRA_HANDLE);
    nFakeWindows::objects().waitForThreads();

    faultPlan().reset();
    EXPECT_EQ(QUENRA_openController(&handle), 0);
    QUENRA_closeController(handle);
  }
}

TEST_P(CallFailures, WithoutALastError_AreFailuresAllTheSame) {
  const std::vector<tCallRecord> calls = callsOfOpening();
  std::map<tCall, unsigned> counts;
  for (unsigned n = 1; n <= calls.size(); ++n) {
    const tCall call = calls[n - 1].call;
    tOutcome expected = expectedOutcome(call, ++counts[call]);
    if (expected.code == -52009) {
      expected.code = -52003;
    }
    SCOPED_TRACE(std::string(nameOf(call)) + ", call " + std::to_string(counts[call]));
    faultPlan().reset();
    faultPlan().complete(GetParam());
    faultPlan().failAnyCall(n, 0);
    EXPECT_EQ(open(), expected);
    nFakeWindows::objects().waitForThreads();
  }
}

INSTANTIATE_TEST_SUITE_P(Driver, CallFailures,
                         testing::Values(tCompletion::atOnce, tCompletion::later));

}  // namespace
}  // namespace nTests
