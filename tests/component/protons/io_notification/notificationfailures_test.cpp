// Each Windows call of a notification fails in turn.
#include <optional>

#include "quenra_status.h"
#include "tests/component/protons/io_notification/notificationtest.h"
#include "tests/fakewindows/debugger.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::tCall;
using nQUENRA1400::nZOAPAL000::tThread;

constexpr int kAssertionExitCode = 3;  // the low byte of STATUS_BREAKPOINT

std::atomic<int> failedWaits = 0;

void countFailures(uint32_t, tIONotification*, const uint8_t*, uint32_t, tStatus& status) noexcept {
  failedWaits += status.isError() ? 1 : 0;
}

void endAtOnce(void*) noexcept {}

class NotificationFailures : public NotificationTest {
 protected:
  void SetUp() override {
    NotificationTest::SetUp();
    useVirtualTime();
    failedWaits = 0;
    reader = std::make_unique<tThreadedIONotificationReader>(makePort());
    faultPlan().reset();
  }
  void TearDown() override {
    notification.disable();
    reader.reset();
    NotificationTest::TearDown();
  }
  bool enable() { return notification.enable(*reader, proxy, kMask, status); }
  // Enables `next` on another thread while this thread associates the device with the port.
  bool enableTogetherWith(tIONotification& next) {
    std::optional<tTestThread> another;
    faultPlan().beforeCall(tCall::createIoCompletionPort, 1, [&] {
      another.emplace([&] {
        tStatus own;
        next.enable(*reader, proxy, kMask, own);
        EXPECT_EQ(own.code, QUENRA_STATUS_SUCCESS);
      });
      letOthersRun();
    });
    const bool enabled = enable();
    another->join();
    return enabled;
  }
  void expectFailureOf(const char* file, int32_t code, uint32_t line) {
    EXPECT_EQ(status.code, code);
    EXPECT_EQ(status.line, line);
    EXPECT_STREQ(status.file, file);
    EXPECT_STREQ(status.component, "quenra");
  }
  void expectTheNextWorks() {
    EXPECT_FALSE(notification.isEnabled());
    faultPlan().reset();
    status = {};
    EXPECT_TRUE(enable());
    notify("works");
    EXPECT_EQ(waitOn(*reader).payload, "works");
  }

  std::unique_ptr<tThreadedIONotificationReader> reader;
  tIONotification notification;
};

TEST_F(NotificationFailures, PortThatRefusesTheDevice_ReportsItsLocationAndIsTriedAgainNextTime) {
  faultPlan().failCall(tCall::createIoCompletionPort, 1, ERROR_ACCESS_DENIED);
  EXPECT_FALSE(enable());
  expectFailureOf("tdeviceinterfaceproxy", QUENRA_STATUS_ACCESS_DENIED, 315);
  EXPECT_EQ(faultPlan().callCount(tCall::deviceIoControl), 0u);
  expectTheNextWorks();
}

TEST_F(NotificationFailures, PortThatRefusesTheDeviceWithAWarning_LeavesNoThreadWaiting) {
  faultPlan().failCall(tCall::createIoCompletionPort, 1, ERROR_IO_PENDING);
  EXPECT_FALSE(enable());
  expectFailureOf("tdeviceinterfaceproxy", QUENRA_STATUS_IO_PENDING, 315);
  EXPECT_EQ(faultPlan().callCount(tCall::deviceIoControl), 0u);
  expectTheNextWorks();
}

TEST_F(NotificationFailures, DeviceThatIsBeingAssociated_IsWaitedForByTheNextNotification) {
  tIONotification next;
  EXPECT_TRUE(enableTogetherWith(next));
  EXPECT_TRUE(next.isEnabled());
  EXPECT_EQ(faultPlan().callCount(tCall::createIoCompletionPort), 1u);
  next.disable();
}

TEST_F(NotificationFailures, DeviceThatCouldNotBeAssociated_IsAssociatedByTheNextNotification) {
  tIONotification next;
  faultPlan().failCall(tCall::createIoCompletionPort, 1, ERROR_ACCESS_DENIED);
  EXPECT_FALSE(enableTogetherWith(next));
  EXPECT_TRUE(next.isEnabled());
  EXPECT_EQ(faultPlan().callCount(tCall::createIoCompletionPort), 2u);
  next.disable();
}

TEST_F(NotificationFailures, RegistrationThatCannotBeSent_WithoutALastError_IsAFailure) {
  faultPlan().failCall(tCall::deviceIoControl, 2, 0);
  EXPECT_FALSE(enable());
  expectFailureOf("tionotification", QUENRA_STATUS_GENERIC_FAILURE, 134);
  expectTheNextWorks();
}

TEST_F(NotificationFailures, DeliveryThatCannotBeArmed_ReportsItsLocation) {
  faultPlan().failCall(tCall::deviceIoControl, 1, ERROR_ACCESS_DENIED);
  EXPECT_FALSE(enable());
  expectFailureOf("tdeviceinterfaceproxy", QUENRA_STATUS_ACCESS_DENIED, 333);
  EXPECT_EQ(faultPlan().callCount(tCall::deviceIoControl), 1u) << "nothing is registered";
}

// Windows leaves the status of a request that it refuses at STATUS_PENDING.
TEST_F(NotificationFailures, RefusedDelivery_ProxyClosed_CancelsNothing) {
  faultPlan().failCall(tCall::deviceIoControl, 1, ERROR_ACCESS_DENIED);
  EXPECT_FALSE(enable());
  proxy.close();
  EXPECT_EQ(faultPlan().callCount(tCall::cancelIoEx), 0u);
}

TEST_F(NotificationFailures, RefusedDelivery_EnabledAgain_ArmsAgain) {
  faultPlan().failCall(tCall::deviceIoControl, 1, ERROR_ACCESS_DENIED);
  ASSERT_FALSE(enable());
  expectTheNextWorks();
}

TEST_F(NotificationFailures, RefusedNextDelivery_EnabledAgain_ArmsAgain) {
  ASSERT_TRUE(enable());
  notify("one");
  faultPlan().reset();
  faultPlan().failCall(tCall::deviceIoControl, 1, ERROR_ACCESS_DENIED);
  ASSERT_EQ(waitOn(*reader).payload, "one");
  notification.disable();
  ASSERT_EQ(waitOn(*reader).kind, kRegistrationEnded);
  expectTheNextWorks();
}

TEST_F(NotificationFailures, RefusedNextDelivery_ProxyClosed_CancelsNoDelivery) {
  ASSERT_TRUE(enable());
  notify("one");
  faultPlan().reset();
  faultPlan().failCall(tCall::deviceIoControl, 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(waitOn(*reader).payload, "one");
  notification.disable();
  ASSERT_EQ(waitOn(*reader).kind, kRegistrationEnded);
  faultPlan().reset();
  proxy.close();
  EXPECT_EQ(faultPlan().callCount(tCall::cancelIoEx), 0u);
}

// A request that never started has no packet to wait for.
TEST_F(NotificationFailures, RefusedRegistration_ReaderDestroyed_WaitsForNoPacket) {
  faultPlan().failCall(tCall::deviceIoControl, 2, ERROR_ACCESS_DENIED);
  EXPECT_FALSE(enable());
  proxy.close();
  while (waitOn(*reader, kShortTime).code == 0) {
  }
  faultPlan().reset();
  reader.reset();
  EXPECT_EQ(faultPlan().callCount(tCall::getQueuedCompletionStatus), 0u);
}

TEST_F(NotificationFailures, RegistrationThatCannotBeSent_ReportsItsLocation) {
  faultPlan().failCall(tCall::deviceIoControl, 2, ERROR_ACCESS_DENIED);
  EXPECT_FALSE(enable());
  expectFailureOf("tionotification", QUENRA_STATUS_ACCESS_DENIED, 134);
  expectTheNextWorks();
}

TEST_F(NotificationFailures, RequestsThatArePendingFirst_AreNoFailure) {
  faultPlan().complete(nFakeWindows::tCompletion::later);
  EXPECT_TRUE(enable());
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  letOthersRun();
  faultPlan().reset();
  notify("later");
  EXPECT_EQ(waitOn(*reader).payload, "later");
}

TEST_F(NotificationFailures, UnregisteringThatFails_CancelsTheRegistration) {
  ASSERT_TRUE(enable());
  faultPlan().reset();
  faultPlan().failCall(tCall::deviceIoControl, 1, ERROR_ACCESS_DENIED);
  notification.disable();
  EXPECT_FALSE(notification.isEnabled());
  EXPECT_EQ(faultPlan().callCount(tCall::cancelIoEx), 1u);
  letOthersRun();
  EXPECT_THROW(notify("unregistered"), nSimulator::tControlError);
}

TEST_F(NotificationFailures, WakeUpThatCannotBePosted_ReportsItsLocation) {
  faultPlan().failCall(tCall::postQueuedCompletionStatus, 1, ERROR_INVALID_HANDLE);
  reader->wake(status);
  expectFailureOf("tionotification", QUENRA_STATUS_GENERIC_FAILURE, 101);
}

TEST_F(NotificationFailures, ThreadOnAStatusInError_IsNotStarted) {
  tThread thread;
  status.code = -1;
  thread.start<&endAtOnce>(nullptr, status);
  EXPECT_FALSE(thread.isStarted());
  EXPECT_EQ(status.code, -1);
  EXPECT_EQ(faultPlan().callCount(tCall::beginThread), 0u);
}

TEST_F(NotificationFailures, WaitThatFails_ReportsItsLocation) {
  faultPlan().failCall(tCall::getQueuedCompletionStatus, 1, ERROR_ACCESS_DENIED);
  const tNotice notice = waitOn(*reader);
  EXPECT_EQ(notice.code, QUENRA_STATUS_ACCESS_DENIED);
  EXPECT_EQ(notice.line, 59u);
  EXPECT_EQ(notice.notification, nullptr);
}

TEST_F(NotificationFailures, WaitThatFailsOnTheThread_IsHandedToTheCallbackAndTheLoopGoesOn) {
  faultPlan().failCall(tCall::getQueuedCompletionStatus, 1, ERROR_ACCESS_DENIED);
  reader->start(countFailures, status);
  EXPECT_TRUE(becomesTrue([] { return failedWaits == 1; }));
  EXPECT_TRUE(
      becomesTrue([] { return faultPlan().callCount(tCall::getQueuedCompletionStatus) == 2; }));
}

TEST_F(NotificationFailures, ThreadThatCannotBeStarted_ReportsItsLocation) {
  faultPlan().failCall(tCall::beginThread, 1, ERROR_ACCESS_DENIED);
  reader->start(countFailures, status);
  expectFailureOf("thread", QUENRA_STATUS_INTERNAL_ERROR, 471);
  EXPECT_FALSE(reader->isRunning());
  EXPECT_EQ(faultPlan().callCount(tCall::getThreadPriority), 0u);
}

TEST_F(NotificationFailures, ThreadOfNormalPriority_KeepsIt) {
  reader->start(countFailures, status);
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  EXPECT_EQ(faultPlan().callCount(tCall::setThreadPriority), 0u);
}

TEST_F(NotificationFailures, ThreadOfAnotherPriority_GetsTheNormalOne) {
  nFakeWindows::startThreadsWithPriority(THREAD_PRIORITY_LOWEST);
  reader->start(countFailures, status);
  nFakeWindows::startThreadsWithPriority(THREAD_PRIORITY_NORMAL);
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  EXPECT_TRUE(reader->isRunning());
  EXPECT_EQ(faultPlan().callCount(tCall::setThreadPriority), 1u);
}

TEST_F(NotificationFailures, PriorityThatCannotBeRead_IsSet) {
  faultPlan().failCall(tCall::getThreadPriority, 1, ERROR_ACCESS_DENIED);
  reader->start(countFailures, status);
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  EXPECT_EQ(faultPlan().callCount(tCall::setThreadPriority), 1u);
}

TEST_F(NotificationFailures,
       PriorityThatCannotBeSet_ReportsItsLocationAndTheThreadEndsWithItsReader) {
  nFakeWindows::startThreadsWithPriority(THREAD_PRIORITY_LOWEST);
  faultPlan().failCall(tCall::setThreadPriority, 1, ERROR_ACCESS_DENIED);
  reader->start(countFailures, status);
  nFakeWindows::startThreadsWithPriority(THREAD_PRIORITY_NORMAL);
  expectFailureOf("thread", QUENRA_STATUS_INTERNAL_ERROR, 866);
  EXPECT_FALSE(reader->isRunning());
  reader.reset();
  EXPECT_EQ(faultPlan().callCount(tCall::waitForSingleObject), 1u) << "it is waited for";
}

TEST_F(NotificationFailures, PriorityOfAThreadThatIsNotStarted_ReportsItsLocation) {
  tThread thread;
  thread.setPriority(THREAD_PRIORITY_NORMAL, status);
  expectFailureOf("thread", QUENRA_STATUS_NOT_READY, 859);
  EXPECT_EQ(faultPlan().callCount(), 0u);
}

TEST_F(NotificationFailures, LastWakeUpThatCannotBePosted_IsTriedAgain) {
  // The second error maps to a warning; it does not post a wake-up either.
  for (const DWORD error : {DWORD{ERROR_INVALID_HANDLE}, DWORD{ERROR_IO_PENDING}}) {
    faultPlan().reset();
    reader = std::make_unique<tThreadedIONotificationReader>(makePort());
    reader->start(countFailures, status);
    faultPlan().failCall(tCall::postQueuedCompletionStatus, 1, error);
    reader.reset();
    EXPECT_EQ(faultPlan().callCount(tCall::postQueuedCompletionStatus), 2u);
  }
}

TEST_F(NotificationFailures, ThreadThatCannotBeNamed_Runs) {
  faultPlan().failCall(tCall::addVectoredExceptionHandler, 1, ERROR_NOT_ENOUGH_MEMORY);
  reader->start(countFailures, status);
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  EXPECT_TRUE(reader->isRunning());
}

// ---- The end of a reader ----

class NotificationDrain : public NotificationFailures {
 protected:
  static constexpr ULONGLONG kOneSecond = 1000;

  // The time that destroying the reader takes, in milliseconds.
  ULONGLONG destroyReader() {
    const ULONGLONG start = GetTickCount64();
    reader.reset();
    return GetTickCount64() - start;
  }
};

TEST_F(NotificationDrain, FinalStatusStoredAtDequeue_DequeuesEveryPacket) {
  nFakeWindows::objects().useFinalStatus(nFakeWindows::tFinalStatus::atDequeue);
  reader->start(countFailures, status);
  ASSERT_TRUE(enable());
  notification.disable();
  EXPECT_LT(destroyReader(), kOneSecond);
  proxy.close();
  EXPECT_EQ(nFakeWindows::objects().takeLostPackets(), 0u);
}

TEST_F(NotificationDrain, NotificationStillEnabled_DequeuesEveryPacket) {
  ASSERT_TRUE(enable());
  EXPECT_LT(destroyReader(), kOneSecond);
  EXPECT_EQ(nFakeWindows::objects().takeLostPackets(), 0u);
}

TEST_F(NotificationDrain, ProxyClosedBefore_DequeuesEveryPacket) {
  ASSERT_TRUE(enable());
  proxy.close();
  EXPECT_LT(destroyReader(), kOneSecond);
  EXPECT_EQ(nFakeWindows::objects().takeLostPackets(), 0u);
}

TEST_F(NotificationDrain, CancellationThatFailsOnce_IsRepeated) {
  ASSERT_TRUE(enable());
  faultPlan().failCall(tCall::cancelIoEx, 1, ERROR_NOT_FOUND);
  EXPECT_LT(destroyReader(), kOneSecond);
  EXPECT_EQ(nFakeWindows::objects().takeLostPackets(), 0u);
}

TEST_F(NotificationDrain, WaitThatFailsOnce_IsRepeated) {
  ASSERT_TRUE(enable());
  faultPlan().reset();
  faultPlan().failCall(tCall::getQueuedCompletionStatus, 1, ERROR_ACCESS_DENIED);
  EXPECT_LT(destroyReader(), kOneSecond);
  EXPECT_EQ(nFakeWindows::objects().takeLostPackets(), 0u);
}

// The driver may still write to the requests: the address sanitizer watches their memory.
TEST_F(NotificationDrain, DriverThatIgnoresCancellation_EndsAfterTwoSecondsAndKeepsTheRequests) {
  ASSERT_TRUE(enable());
  faultPlan().failEveryCall(tCall::cancelIoEx, ERROR_NOT_FOUND);
  const ULONGLONG elapsed = destroyReader();
  EXPECT_GE(elapsed, 2 * kOneSecond);
  EXPECT_LT(elapsed, 3 * kOneSecond);
  faultPlan().reset();
  notify("late");
  proxy.close();
  EXPECT_EQ(nFakeWindows::objects().takeLostPackets(), 2u) << "the delivery and the registration";
}

// ---- Retries ----

TEST_F(NotificationFailures, WakeUpThatNeverSucceeds_EndsTheProcess) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(
      {
        nFakeWindows::showDebuggerOutput();
        reader->start(countFailures, status);
        faultPlan().failEveryCall(tCall::postQueuedCompletionStatus, ERROR_ACCESS_DENIED);
        reader.reset();
      },
      testing::ExitedWithCode(kAssertionExitCode), "quenra\\|wait\\|40");
}

TEST_F(NotificationFailures, WaitForTheThreadThatNeverSucceeds_EndsTheProcess) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(
      {
        nFakeWindows::showDebuggerOutput();
        reader->start(countFailures, status);
        faultPlan().failEveryCall(tCall::waitForSingleObject, ERROR_ACCESS_DENIED);
        reader.reset();
      },
      testing::ExitedWithCode(kAssertionExitCode), "quenra\\|wait\\|22");
}

// ---- The module ----

TEST_F(NotificationFailures, ModuleThatCannotBeReferenced_StartsNoThread) {
  faultPlan().failCall(tCall::getModuleHandleEx, 1, ERROR_ACCESS_DENIED);
  reader->start(countFailures, status);
  expectFailureOf("thread", QUENRA_STATUS_INTERNAL_ERROR, 471);
  EXPECT_FALSE(reader->isRunning());
  EXPECT_EQ(faultPlan().callCount(tCall::beginThread), 0u);
}

TEST_F(NotificationFailures, RunningThread_HoldsTheModuleUntilItEnds) {
  reader->start(countFailures, status);
  EXPECT_EQ(nFakeWindows::moduleReferences(), 1);
  reader.reset();
  nFakeWindows::objects().waitForThreads();
  EXPECT_EQ(nFakeWindows::moduleReferences(), 0);
}

TEST_F(NotificationFailures, ThreadThatCannotBeStarted_ReleasesTheModule) {
  faultPlan().failCall(tCall::beginThread, 1, ERROR_ACCESS_DENIED);
  reader->start(countFailures, status);
  EXPECT_EQ(nFakeWindows::moduleReferences(), 0);
}

TEST_F(NotificationFailures, AnyCallThatFails_LeavesNoObjectOpen) {
  for (unsigned nth = 1; nth <= 24; ++nth) {
    SCOPED_TRACE(nth);
    faultPlan().reset();
    tStatus own;
    auto ownReader = std::make_unique<tThreadedIONotificationReader>(makePort());
    tDeviceInterfaceProxy ownProxy;
    openController(ownProxy, own);
    tIONotification ownNotification;
    faultPlan().reset();  // counts from here
    faultPlan().failAnyCall(nth, ERROR_ACCESS_DENIED);
    ownReader->start(countFailures, own);
    ownNotification.enable(*ownReader, ownProxy, kMask, own);
    ownNotification.disable();
    ownReader.reset();
    ownProxy.close();
  }
  faultPlan().reset();
  // The fixture's own: the proxy's two, the port and the channel to the machine.
  nFakeWindows::objects().waitForThreads();
  EXPECT_EQ(nFakeWindows::objects().open().size(), 4u);
}

}  // namespace
}  // namespace nTests
