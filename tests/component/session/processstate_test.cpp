#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>

#include "source/user/exports/callboundary.h"
#include "source/user/exports/tprocessstate.h"
#include "tests/component/session/sessiontest.h"
#include "tests/fakewindows/machine.h"
#include "tests/fakewindows/threads.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::scheduler;
using nFakeWindows::tCall;

class ProcessState : public SessionTest {};

TEST_F(ProcessState, UnloadingWithAnOpenSession_ClosesNothing) {
  nQUENRA1400::nZOAPAL000::tStartUp startUp;
  nQUENRA1400::tProcessState state(startUp);
  state.load();
  zoerr::tOwnedStatus status;
  state.open(status);
  ASSERT_EQ(status.code, 0);
  faultPlan().reset();
  state.unload();
  EXPECT_EQ(faultPlan().callCount(), 0u);
  state.unload();  // deletes no lock

  state.load();
  state.close();
  state.unload();
}

TEST_F(ProcessState, Unloaded_ReportsNotReady) {
  nQUENRA1400::nZOAPAL000::tStartUp startUp;
  nQUENRA1400::tProcessState state(startUp);
  state.load();
  EXPECT_TRUE(startUp.isReady());
  state.unload();
  zoerr::tOwnedStatus status;
  startUp.mergeInto(status);
  EXPECT_EQ(outcomeOf(status), (tOutcome{QUENRA_STATUS_NOT_READY, "tstartup", 23}));
}

TEST_F(ProcessState, UnloadedWithoutSession_FreesTheSmbiosTable) {
  nQUENRA1400::nZOAPAL000::tStartUp startUp;
  // Never destroyed, like the library's state: the leak checker reports a table left by unload.
  const auto storage = std::make_unique<std::byte[]>(sizeof(nQUENRA1400::tProcessState));
  auto& state = *new (storage.get()) nQUENRA1400::tProcessState(startUp);
  state.load();
  zoerr::tOwnedStatus status;
  state.open(status);
  ASSERT_EQ(status.code, 0);
  state.close();
  state.unload();
  std::fill_n(storage.get(), sizeof(nQUENRA1400::tProcessState), std::byte{0});
  expectNoLeak();
}

TEST_F(ProcessState, FailedInitialisationOfTheLock_IsReportedByTheStartUpState) {
  faultPlan().failCall(tCall::initializeCriticalSectionEx, 1, ERROR_NOT_ENOUGH_MEMORY);
  nQUENRA1400::nZOAPAL000::tStartUp startUp;
  nQUENRA1400::tProcessState state(startUp);
  state.load();
  EXPECT_FALSE(startUp.isReady());
  zoerr::tOwnedStatus status;
  startUp.mergeInto(status);
  EXPECT_EQ(outcomeOf(status), (tOutcome{QUENRA_STATUS_MEMORY_FULL, "tcriticalsection", 31}));
  state.unload();
}

TEST_F(ProcessState, WithoutSession_FailsWithInvalidHandle) {
  nQUENRA1400::nZOAPAL000::tStartUp startUp;
  nQUENRA1400::tProcessState state(startUp);
  state.load();
  zoerr::tOwnedStatus status;
  EXPECT_EQ(state.session(status), nullptr);
  EXPECT_EQ(outcomeOf(status), sessionFailure(QUENRA_STATUS_INVALID_HANDLE, 184));
  state.unload();
}

TEST_F(ProcessState, OpenSession_IsFoundWithoutTheLock) {
  nQUENRA1400::nZOAPAL000::tStartUp startUp;
  nQUENRA1400::tProcessState state(startUp);
  state.load();
  zoerr::tOwnedStatus status;
  state.open(status);
  const unsigned entered = nFakeWindows::enteredCriticalSections();
  EXPECT_NE(state.session(status), nullptr);
  EXPECT_EQ(nFakeWindows::enteredCriticalSections(), entered);
  state.close();
  EXPECT_EQ(state.session(status), nullptr);
  EXPECT_EQ(nFakeWindows::enteredCriticalSections(), entered + 2)
      << "of the close and of the search";
  state.unload();
}

TEST_F(ProcessState, SearchDuringTheFirstOpen_WaitsForTheSession) {
  useVirtualTime();
  nQUENRA1400::nZOAPAL000::tStartUp startUp;
  nQUENRA1400::tProcessState state(startUp);
  state.load();
  zoerr::tOwnedStatus opening;
  zoerr::tOwnedStatus searching;
  const nQUENRA1400::tControllerUserSession* found = nullptr;
  std::optional<unsigned> searcher;
  nFakeWindows::machine().useDriver([&](const nFakeWindows::tDriverRequest& request) {
    if (!searcher) {
      searcher = scheduler().start("searcher", [&] { found = state.session(searching); });
      scheduler().settle();
      EXPECT_EQ(found, nullptr) << "the session is not open yet";
    }
    return request.byModel();
  });
  state.open(opening);
  ASSERT_TRUE(searcher.has_value());
  scheduler().join(*searcher);
  nFakeWindows::machine().useDriver(nullptr);
  EXPECT_EQ(opening.code, 0);
  EXPECT_EQ(searching.code, 0);
  EXPECT_NE(found, nullptr);
  state.close();
  state.unload();
}

class DevicePathAttribute : public SessionTest {
 protected:
  static int32_t read() {
    char path[256] = "untouched";
    uint64_t size = sizeof path;
    const int32_t code = QUENRA_getAttributeUTF8(0, QUENRA_ATTRIBUTE_DEVICE_PATH, path, &size);
    if (code != 0) {
      EXPECT_STREQ(path, "untouched");
    }
    EXPECT_EQ(size, sizeof path);
    return code;
  }
};

TEST_F(DevicePathAttribute, FailedCreationOfTheList_IsNoController) {
  faultPlan().failCall(tCall::setupDiGetClassDevs, 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(read(), QUENRA_STATUS_NO_CONTROLLER);
  EXPECT_EQ(faultPlan().callCount(tCall::setupDiDestroyDeviceInfoList), 0u);
}

TEST_F(DevicePathAttribute, FailedEnumeration_IsNoController) {
  faultPlan().failCall(tCall::setupDiEnumDeviceInterfaces, 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(read(), QUENRA_STATUS_NO_CONTROLLER);
  EXPECT_EQ(faultPlan().callCount(tCall::setupDiDestroyDeviceInfoList), 1u);
}

TEST_F(DevicePathAttribute, SeveralInterfaces_ReportTheFirst) {
  constexpr uint32_t kInterfaces = 3;
  nFakeWindows::machine().usePresence({1, 1, kInterfaces});
  for (uint32_t i = 0; i < kInterfaces; ++i) {
    nFakeWindows::machine().usePath({kSimulatorInterfaceDevicePath, i},
                                    "path of interface " + std::to_string(i));
  }
  char path[256] = "";
  uint64_t size = sizeof path;
  EXPECT_EQ(QUENRA_getAttributeUTF8(0, QUENRA_ATTRIBUTE_DEVICE_PATH, path, &size), 0);
  EXPECT_STREQ(path, "path of interface 0");
}

TEST_F(DevicePathAttribute, FailedDetail_ReturnsTheMappedCode) {
  faultPlan().failCall(tCall::setupDiGetDeviceInterfaceDetail, 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(read(), QUENRA_STATUS_ACCESS_DENIED);
  EXPECT_EQ(faultPlan().callCount(tCall::setupDiDestroyDeviceInfoList), 1u);
}

TEST_F(DevicePathAttribute, PathOf252Characters_IsTooLong) {
  nFakeWindows::machine().usePath({kSimulatorInterfaceDevicePath, 0}, std::string(252, 'p'));
  EXPECT_EQ(read(), QUENRA_STATUS_PATH_TOO_LONG);
  nFakeWindows::machine().usePath({kSimulatorInterfaceDevicePath, 0}, std::string(251, 'p'));
  EXPECT_EQ(read(), 0);
}

using nQUENRA1400::runWithoutThrowing;

TEST(ExceptionBoundary, WithoutException_LeavesTheStatusToTheOperation) {
  zoerr::tOwnedStatus status;
  runWithoutThrowing(status, [&status] { status.code = 3; });
  EXPECT_EQ(status.code, 3);
}

TEST(ExceptionBoundary, ShortMemory_BecomesOutOfMemory) {
  zoerr::tOwnedStatus status;
  runWithoutThrowing(status, [] { throw std::bad_alloc(); });
  EXPECT_EQ(status.code, QUENRA_STATUS_OUT_OF_MEMORY);
}

TEST(ExceptionBoundary, ExceptionWithAStatus_IsThatStatus) {
  zoerr::tOwnedStatus raised;
  raised.set(-77, {"file", 5});
  zoerr::tOwnedStatus status;
  runWithoutThrowing(status, [&raised] { throw zoerr::Exception(raised); });
  EXPECT_EQ(status.code, -77);
  EXPECT_STREQ(status.description, R"({"file":"file","line":5,"component":"quenra"})");
}

TEST(ExceptionBoundary, AnythingElse_BecomesInternalError) {
  zoerr::tOwnedStatus status;
  runWithoutThrowing(status, [] { throw std::runtime_error("unforeseen"); });
  EXPECT_EQ(status.code, QUENRA_STATUS_INTERNAL_ERROR);
  zoerr::tOwnedStatus other;
  runWithoutThrowing(other, [] { throw 5; });
  EXPECT_EQ(other.code, QUENRA_STATUS_INTERNAL_ERROR);
}

}  // namespace
}  // namespace nTests
