#include <sys/resource.h>

#include <cstring>

#include "protocol/controllerrequests.h"
#include "tests/component/session/sessiontest.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::machine;
using nFakeWindows::tCall;

#if defined(__has_feature)
constexpr bool kUnderThreadSanitizer = __has_feature(thread_sanitizer);
#else
constexpr bool kUnderThreadSanitizer = false;
#endif

class Session : public SessionTest {};

TEST_F(Session, NoControllerInterface_FailsAtLine222) {
  usePresence(0, 1);
  EXPECT_EQ(open(), sessionFailure(-26932, 222));
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

TEST_F(Session, SecondControllerInterface_FailsAtLine242) {
  usePresence(2, 0);
  EXPECT_EQ(open(), sessionFailure(-52003, 242));
}

TEST_F(Session, SecondMartenInterface_FailsAtLine273) {
  usePresence(1, 2);
  EXPECT_EQ(open(), sessionFailure(-52003, 273));
}

TEST_F(Session, WithoutPlatformBytes_FailsAtLine355) {
  tReferenceTable table;
  table.structure(0x96).cutTo(0x05);
  useTable(table);
  EXPECT_EQ(open(), sessionFailure(-26932, 355));
}

TEST_F(Session, UnsupportedPlatform_FailsAtLine368) {
  tReferenceTable table;
  table.structure(0x96).byte(0x04, 1);
  useTable(table);
  EXPECT_EQ(open(), sessionFailure(-26932, 368));
}

TEST_F(Session, UnsupportedModel_FailsAtLine380) {
  tReferenceTable table;
  table.structure(0x01).text(0x05, "qmod-7105");
  useTable(table);
  EXPECT_EQ(open(), sessionFailure(-26932, 380));
}

TEST_F(Session, WithoutMemoryArray_FailsAtLine2569) {
  useTable(tReferenceTable().remove(0x10));
  EXPECT_EQ(open(), sessionFailure(-26934, 2569));
}

TEST_F(Session, FailedOpenWithASecondInterface_ReportsTheOpensFailure) {
  usePresence(2, 0);
  faultPlan().reset();
  faultPlan().failCall(tCall::createFile, 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(open(), (tOutcome{-52009, "tdeviceinterfaceproxy", 43}));
}

TEST_F(Session, DeviceThatVanishesBeforeItIsOpened_IsNotFound) {
  faultPlan().beforeCall(tCall::createFile, 1, [] {
    faultPlan().reset();
    usePresence(0, 0);
  });
  EXPECT_EQ(open(), (tOutcome{-52006, "tdeviceinterfaceproxy", 43}));
}

TEST_F(Session, DevicePathTooLong_FailsAtLine224) {
  machine().usePath({kSimulatorInterfaceController, 0}, std::string(252, 'p'));
  EXPECT_EQ(open(), (tOutcome{-52019, "tdeviceinterfaceiterator", 224}));
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
  EXPECT_EQ(outcomeOf(second), (tOutcome{-52003, "tdeviceinterfaceproxy", 115}));
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
  EXPECT_EQ(second.code, -52003);
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

}  // namespace
}  // namespace nTests
