// Each Windows call of a pending request fails in turn.
#include <algorithm>

#include "quenra_status.h"
#include "tests/component/protons/driver/drivertest.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::tCall;
using testing::IsEmpty;

class PendingFailures : public PendingRequest {
 protected:
  void SetUp() override {
    PendingRequest::SetUp();
    faultPlan().reset();
  }
  uint64_t begin() { return proxy.beginPendingRequest(1, 2, 3, request, status); }
  // The open objects except the proxy's file and event and the test's channel to the machine.
  std::vector<std::string> opened() {
    nFakeWindows::objects().waitForThreads();
    std::vector<std::string> open = nFakeWindows::objects().open();
    open.resize(open.size() - std::min<size_t>(open.size(), kOpenBefore));
    return open;
  }
  static constexpr size_t kOpenBefore = 3;

  void expectNothingLeft() {
    EXPECT_EQ(request.handle(), 0u);
    EXPECT_THAT(opened(), IsEmpty());
    faultPlan().reset();
    tStatus own;
    EXPECT_NE(proxy.beginPendingRequest(1, 2, 3, request, own), 0u) << "the next one works";
    proxy.endPendingRequest(request);
    EXPECT_THAT(opened(), IsEmpty());
  }
};

TEST_F(PendingFailures, WithoutAnEventForTheAcceptance_ReportsItsLocation) {
  faultPlan().failCall(tCall::createEvent, 1, ERROR_NO_SYSTEM_RESOURCES);
  EXPECT_EQ(begin(), 0u);
  expectFailure(QUENRA_STATUS_MEMORY_FULL, 238);
  EXPECT_EQ(faultPlan().callCount(tCall::beginThread), 0u);
  expectNothingLeft();
}

TEST_F(PendingFailures, WithoutAThread_ReportsItsLocation) {
  faultPlan().failCall(tCall::beginThread, 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(begin(), 0u);
  expectFailure(QUENRA_STATUS_ACCESS_DENIED, 264);
  EXPECT_EQ(faultPlan().callCount(tCall::deviceIoControl), 0u);
  expectNothingLeft();
}

TEST_F(PendingFailures, ModuleThatCannotBeReferenced_StartsNoWorker) {
  faultPlan().failCall(tCall::getModuleHandleEx, 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(begin(), 0u);
  expectFailure(QUENRA_STATUS_ACCESS_DENIED, 264);
  EXPECT_EQ(faultPlan().callCount(tCall::beginThread), 0u);
  expectNothingLeft();
}

TEST_F(PendingFailures, RunningWorker_HoldsTheModuleUntilItEnds) {
  ASSERT_NE(begin(), 0u);
  EXPECT_EQ(nFakeWindows::moduleReferences(), 1);
  proxy.endPendingRequest(request);
  nFakeWindows::objects().waitForThreads();
  EXPECT_EQ(nFakeWindows::moduleReferences(), 0);
}

TEST_F(PendingFailures, WithoutAThreadAndWithoutALastError_IsAGenericFailure) {
  faultPlan().failCall(tCall::beginThread, 1, ERROR_SUCCESS);
  EXPECT_EQ(begin(), 0u);
  expectFailure(QUENRA_STATUS_GENERIC_FAILURE, 264);
  expectNothingLeft();
}

TEST_F(PendingFailures, WorkerWithoutAnEvent_ReportsItsLocation) {
  faultPlan().failCall(tCall::createEvent, 2, ERROR_NO_SYSTEM_RESOURCES);
  EXPECT_EQ(begin(), 0u);
  expectFailure(QUENRA_STATUS_MEMORY_FULL, 115);
  EXPECT_EQ(faultPlan().callCount(tCall::deviceIoControl), 0u);
  expectNothingLeft();
}

TEST_F(PendingFailures, WorkerWhoseRequestFailsImmediately_ReportsItsLocation) {
  faultPlan().failCall(tCall::deviceIoControl, 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(begin(), 0u);
  expectFailure(QUENRA_STATUS_ACCESS_DENIED, 115);
  expectNothingLeft();
}

TEST_F(PendingFailures, WorkerWhoseRequestFailsLater_ReportsItsLocation) {
  faultPlan().complete(nFakeWindows::tCompletion::later, ERROR_ACCESS_DENIED);
  EXPECT_EQ(begin(), 0u);
  expectFailure(QUENRA_STATUS_ACCESS_DENIED, 110);
  expectNothingLeft();
}

TEST_F(PendingFailures, WorkerThatCannotWaitBeforeItIsAccepted_CancelsItsRequest) {
  machine().setAcceptance(kSimulatorAcceptLater);
  faultPlan().reset();
  faultPlan().failCall(tCall::getOverlappedResult, 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(begin(), 0u);
  expectFailure(QUENRA_STATUS_ACCESS_DENIED, 110);
  EXPECT_EQ(pendingCount(), 0u);
  machine().setAcceptance(kSimulatorAcceptAtOnce);
  expectNothingLeft();
}

TEST_F(PendingFailures, WorkerThatCannotWaitOnceItIsAccepted_CancelsItsRequest) {
  faultPlan().failCall(tCall::getOverlappedResult, 1, ERROR_ACCESS_DENIED);
  EXPECT_NE(begin(), 0u);
  EXPECT_TRUE(becomesTrue([this] { return pendingCount() == 0; }));
  faultPlan().reset();
  proxy.endPendingRequest(request);
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  expectNothingLeft();
}

TEST_F(PendingFailures, RequestThatCannotBeCancelled_IsWaitedFor) {
  machine().setAcceptance(kSimulatorAcceptLater);
  faultPlan().reset();
  faultPlan().failCall(tCall::getOverlappedResult, 1, ERROR_ACCESS_DENIED);
  faultPlan().failCall(tCall::cancelIoEx, 1, ERROR_NOT_FOUND);
  std::thread starter([this] { begin(); });
  EXPECT_TRUE(becomesTrue([] { return faultPlan().callCount(tCall::cancelIoEx) == 1; }));
  EXPECT_EQ(pendingCount(), 1u);
  machine().completePending(0, ERROR_OPERATION_ABORTED);
  starter.join();
  expectFailure(QUENRA_STATUS_ACCESS_DENIED, 110);
  machine().setAcceptance(kSimulatorAcceptAtOnce);
  expectNothingLeft();
}

TEST_F(PendingFailures, WaitForBeingAcceptedThatFails_IsTriedAgain) {
  faultPlan().failCall(tCall::waitForMultipleObjects, 1, ERROR_INVALID_HANDLE);
  EXPECT_NE(begin(), 0u);
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  EXPECT_EQ(faultPlan().callCount(tCall::waitForMultipleObjects), 2u);
  proxy.endPendingRequest(request);
  expectNothingLeft();
}

TEST_F(PendingFailures, WaitForTheWorkerThatFails_IsTriedAgain) {
  ASSERT_NE(begin(), 0u);
  faultPlan().reset();
  faultPlan().failCall(tCall::waitForSingleObject, 1, ERROR_INVALID_HANDLE);
  proxy.endPendingRequest(request);
  EXPECT_EQ(faultPlan().callCount(tCall::waitForSingleObject), 2u);
  expectNothingLeft();
}

TEST_F(PendingFailures, EndThatCannotBeSent_LeavesTheRequestToTheClosingOfTheDevice) {
  ASSERT_NE(begin(), 0u);
  faultPlan().reset();
  faultPlan().failCall(tCall::deviceIoControl, 1, ERROR_ACCESS_DENIED);
  proxy.endPendingRequest(request);
  EXPECT_EQ(request.handle(), 0u);
  EXPECT_EQ(faultPlan().callCount(tCall::waitForSingleObject), 0u) << "it would wait for ever";
  EXPECT_EQ(pendingCount(), 1u);
  proxy.close();
  EXPECT_EQ(pendingCount(), 0u);
}

TEST_F(PendingFailures, NothingIsClosedTwiceAndNothingIsKept) {
  ASSERT_NE(begin(), 0u);
  // Three handles: the caller's event, the thread, and the worker's event.
  proxy.endPendingRequest(request);
  EXPECT_EQ(faultPlan().callCount(tCall::createEvent), 2u);
  EXPECT_EQ(faultPlan().callCount(tCall::beginThread), 1u);
  nFakeWindows::objects().waitForThreads();
  EXPECT_EQ(faultPlan().callCount(tCall::closeHandle), 3u);
  expectNothingLeft();
}

TEST_F(PendingFailures, AnyCallThatFails_LeavesNoObjectOpen) {
  for (unsigned nth = 1; nth <= 12; ++nth) {
    SCOPED_TRACE(nth);
    faultPlan().reset();
    faultPlan().failAnyCall(nth, ERROR_ACCESS_DENIED);
    status = {};
    begin();
    proxy.endPendingRequest(request);
    faultPlan().reset();
    proxy.close();
    EXPECT_EQ(pendingCount(), 0u);
    nFakeWindows::objects().waitForThreads();
    EXPECT_EQ(nFakeWindows::objects().open().size(), 1u) << "the test's own channel";
    status = {};
    openController(proxy, status);
    ASSERT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  }
}

}  // namespace
}  // namespace nTests
