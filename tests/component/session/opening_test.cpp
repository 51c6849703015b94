// Opening a controller on machines of every kind, and with each Windows call failing in turn.
#include <sys/resource.h>

#include <cstring>

#include "protocol/controllerrequests.h"
#include "tests/component/session/sessiontest.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::machine;
using nFakeWindows::tCall;
using nFakeWindows::tCallRecord;
using nFakeWindows::tCompletion;

#if defined(__has_feature)
constexpr bool kUnderThreadSanitizer = __has_feature(thread_sanitizer);
#else
constexpr bool kUnderThreadSanitizer = false;
#endif

// ---- Machines ----

class Session : public SessionTest {};

TEST_F(Session, NoControllerInterface_FailsWithNoController) {
  usePresence(0, 1);
  EXPECT_EQ(open(), sessionFailure(QUENRA_STATUS_NO_CONTROLLER, 222));
}

TEST_F(Session, Failure_DescribesFileLineAndComponent) {
  usePresence(0, 1);
  nQUENRA1400::nZOSMBIOS_1_1::cZoSmBiosWindowsProvider provider;
  zoerr::tOwnedStatus status;
  const nQUENRA1400::tControllerUserSession session(provider, status);
  EXPECT_STREQ(
      status.description,
      R"({"file":"source\\user\\tControllerUserSession","line":222,"component":"quenra"})");
}

TEST_F(Session, SecondControllerInterface_FailsWithGenericFailure) {
  usePresence(2, 0);
  EXPECT_EQ(open(), sessionFailure(QUENRA_STATUS_GENERIC_FAILURE, 242));
}

TEST_F(Session, SecondMartenInterface_FailsWithGenericFailure) {
  usePresence(1, 2);
  EXPECT_EQ(open(), sessionFailure(QUENRA_STATUS_GENERIC_FAILURE, 273));
}

TEST_F(Session, WithoutPlatformBytes_FailsWithNoController) {
  tReferenceTable table;
  table.structure(0x96).cutTo(0x05);
  useTable(table);
  EXPECT_EQ(open(), sessionFailure(QUENRA_STATUS_NO_CONTROLLER, 355));
}

TEST_F(Session, UnsupportedPlatform_FailsWithNoController) {
  tReferenceTable table;
  table.structure(0x96).byte(0x04, 1);
  useTable(table);
  EXPECT_EQ(open(), sessionFailure(QUENRA_STATUS_NO_CONTROLLER, 368));
}

TEST_F(Session, UnsupportedModel_FailsWithNoController) {
  tReferenceTable table;
  table.structure(0x01).text(0x05, "qmod-7105");
  useTable(table);
  EXPECT_EQ(open(), sessionFailure(QUENRA_STATUS_NO_CONTROLLER, 380));
}

TEST_F(Session, WithoutMemoryArray_FailsWithNotSupported) {
  useTable(tReferenceTable().remove(0x10));
  EXPECT_EQ(open(), sessionFailure(QUENRA_STATUS_NOT_SUPPORTED, 2569));
}

TEST_F(Session, FailedOpenWithASecondInterface_ReportsTheOpensFailure) {
  usePresence(2, 0);
  faultPlan().reset();
  faultPlan().failCall(tCall::createFile, 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(open(), (tOutcome{QUENRA_STATUS_ACCESS_DENIED, "tdeviceinterfaceproxy", 43}));
}

TEST_F(Session, DeviceThatVanishesBeforeItIsOpened_IsNotFound) {
  faultPlan().beforeCall(tCall::createFile, 1, [] {
    faultPlan().reset();
    usePresence(0, 0);
  });
  EXPECT_EQ(open(), (tOutcome{QUENRA_STATUS_NOT_FOUND, "tdeviceinterfaceproxy", 43}));
}

TEST_F(Session, DevicePathTooLong_FailsWithPathTooLong) {
  machine().usePath({kSimulatorInterfaceController, 0}, std::string(252, 'p'));
  EXPECT_EQ(open(), (tOutcome{QUENRA_STATUS_PATH_TOO_LONG, "tdeviceinterfaceiterator", 224}));
  machine().usePath({kSimulatorInterfaceController, 0}, std::string(251, 'p'));
  EXPECT_EQ(open(), success());
}

TEST_F(Session, StatusWithAnError_MakesNoWindowsCall) {
  nQUENRA1400::nZOSMBIOS_1_1::cZoSmBiosWindowsProvider provider;
  zoerr::tOwnedStatus status;
  status.code = -1;
  const nQUENRA1400::tControllerUserSession session(provider, status);
  EXPECT_EQ(status.code, -1);
  EXPECT_EQ(faultPlan().callCount(), 0u);
}

TEST_F(Session, DriverThatAnswersLate_Opens) {
  faultPlan().complete(nFakeWindows::tCompletion::later);
  EXPECT_EQ(open(), success());
}

TEST_F(Session, SecondExchangeFailing_LeavesTheProviderWithoutTable) {
  nQUENRA1400::nZOSMBIOS_1_1::cZoSmBiosWindowsProvider provider;
  zoerr::tOwnedStatus first;
  { const nQUENRA1400::tControllerUserSession session(provider, first); }
  ASSERT_TRUE(provider.hasTable());
  faultPlan().reset();
  faultPlan().failCall(tCall::deviceIoControl, 2, ERROR_GEN_FAILURE);
  zoerr::tOwnedStatus second;
  { const nQUENRA1400::tControllerUserSession session(provider, second); }
  EXPECT_EQ(outcomeOf(second),
            (tOutcome{QUENRA_STATUS_GENERIC_FAILURE, "tdeviceinterfaceproxy", 115}));
  EXPECT_FALSE(provider.hasTable());
}

TEST_F(Session, FirstExchangeFailing_LeavesTheProvidersTable) {
  nQUENRA1400::nZOSMBIOS_1_1::cZoSmBiosWindowsProvider provider;
  zoerr::tOwnedStatus first;
  { const nQUENRA1400::tControllerUserSession session(provider, first); }
  faultPlan().reset();
  faultPlan().failCall(tCall::deviceIoControl, 1, ERROR_GEN_FAILURE);
  zoerr::tOwnedStatus second;
  { const nQUENRA1400::tControllerUserSession session(provider, second); }
  EXPECT_EQ(second.code, QUENRA_STATUS_GENERIC_FAILURE);
  EXPECT_TRUE(provider.hasTable());
}

TEST_F(Session, LargestPlausibleSizesFromTheDriver_TakeNoMemory) {
  if constexpr (kUnderThreadSanitizer) {
    GTEST_SKIP() << "the thread sanitizer keeps as many bytes about an allocation";
  }
  constexpr long kMaxGrowthKib = 16 << 10;  // for the records of a checking allocator
  constexpr uint32_t kPromised = 16 << 20;  // for the table, and again for the version text
  const tExchangeValuesReply promise{kPromised, kPromised, DRIVER_STATUS_BUFFER_TOO_SMALL};
  tSimulatorScript script{};
  script.interfaceKind = kSimulatorInterfaceController;
  script.requestCode = REQUEST_EXCHANGE_VALUES;
  script.times = 1;
  script.action = kSimulatorActionReply;
  script.replySize = sizeof promise;
  std::memcpy(script.reply, &promise, sizeof promise);
  nSimulator::tSimulatedMachine().addScript(script);
  rusage before{};
  getrusage(RUSAGE_SELF, &before);
  EXPECT_EQ(open(), success());
  rusage after{};
  getrusage(RUSAGE_SELF, &after);
  EXPECT_LT(after.ru_maxrss - before.ru_maxrss, kMaxGrowthKib);
}

TEST_F(Session, ClosedSession_LeavesTheProvidersTableAndVersion) {
  {
    nSimulator::tSimulatedMachine machine;
    machine.setVersionText("3.4 and more");
  }
  nQUENRA1400::nZOSMBIOS_1_1::cZoSmBiosWindowsProvider provider;
  zoerr::tOwnedStatus status;
  { const nQUENRA1400::tControllerUserSession session(provider, status); }
  EXPECT_TRUE(provider.hasTable());
  EXPECT_STREQ(provider.versionText(), "3.4 and more");
}

// ---- Calls that fail ----

// The status of an opening in which one call fails with ERROR_ACCESS_DENIED (-52009). `nth` counts
// the calls of that function.
tOutcome expectedOutcome(tCall call, unsigned nth) {
  const bool ofController = nth == 1;
  switch (call) {
    case tCall::setupDiGetClassDevs:
      return ofController ? sessionFailure(QUENRA_STATUS_NO_CONTROLLER, 222)
                          : tOutcome{QUENRA_STATUS_ACCESS_DENIED, "tdeviceinterfaceiterator", 45};
    case tCall::setupDiEnumDeviceInterfaces:
      // A failed enumeration counts as the end of the list.
      return ofController ? sessionFailure(QUENRA_STATUS_NO_CONTROLLER, 222) : success();
    case tCall::setupDiGetDeviceInterfaceDetail:
      return {QUENRA_STATUS_ACCESS_DENIED, "tdeviceinterfaceiterator", 232};
    case tCall::createFile:
      return {QUENRA_STATUS_ACCESS_DENIED, "tdeviceinterfaceproxy", 43};
    case tCall::createEvent:
      return {QUENRA_STATUS_ACCESS_DENIED, "tdeviceinterfaceproxy", 51};
    case tCall::deviceIoControl:
      return {QUENRA_STATUS_ACCESS_DENIED, "tdeviceinterfaceproxy", 115};
    case tCall::getOverlappedResult:
      return {QUENRA_STATUS_ACCESS_DENIED, "tdeviceinterfaceproxy", 110};
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
    if (expected.code == QUENRA_STATUS_ACCESS_DENIED) {
      expected.code = QUENRA_STATUS_GENERIC_FAILURE;
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
