// Code, component, file and line of every failure that the listing of devices and the notifications
// can report.
#include <memory>
#include <string>

#include "quenra_status.h"
#include "tests/component/protons/io_notification/notificationtest.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::tCall;
using nQUENRA1400::nZOAPAL000::tThread;

void ignoreNotice(uint32_t, tIONotification*, const uint8_t*, uint32_t, tStatus&) noexcept {}

class FailureSiteTest : public NotificationTest {
 protected:
  void SetUp() override {
    NotificationTest::SetUp();
    reader = std::make_unique<tIONotificationReader>(makePort());
  }
  void TearDown() override {
    notification.disable();
    reader.reset();
    faultPlan().reset();
    NotificationTest::TearDown();
  }

 public:
  // The operations that the table provokes to fail.
  void list() { const tDeviceInterfaceIterator iterator(kControllerInterfaceClass, status); }
  void readPath() {
    tDeviceInterfaceIterator iterator(kControllerInterfaceClass, status);
    static_cast<void>(iterator.getDevicePath(status));
  }
  void enable() { notification.enable(*reader, proxy, kMask, status); }
  void wait() {
    uint32_t kind = 0;
    uint32_t size = 0;
    uint8_t payload[32] = {};
    reader->wait(kind, payload, size, status, kLongTime);
  }
  void deliver(uint32_t payloadSize) {
    enable();
    tSimulatorNotice notice{};
    notice.mask = kMask;
    notice.payloadSize = payloadSize;
    machine().notify(notice);
    wait();
  }
  void start() {
    tThreadedIONotificationReader threaded(makePort());
    threaded.start(ignoreNotice, status);
  }
  void wake() { reader->wake(status); }
  void setPriorityWithoutThread() { tThread().setPriority(THREAD_PRIORITY_NORMAL, status); }
  void startWithAnotherPriority() {
    nFakeWindows::startThreadsWithPriority(THREAD_PRIORITY_LOWEST);
    start();
    nFakeWindows::startThreadsWithPriority(THREAD_PRIORITY_NORMAL);
  }
  // Fails the nth call of a function, counted from here.
  static void fail(tCall call, unsigned nth) {
    faultPlan().reset();
    faultPlan().failCall(call, nth, ERROR_ACCESS_DENIED);
  }

  std::unique_ptr<tIONotificationReader> reader;
  tIONotification notification;
};

struct tFailureSite {
  const char* name;
  void (*provoke)(FailureSiteTest& test);
  int32_t code;
  const char* file;
  uint32_t line;
};

constexpr tFailureSite kFailureSites[] = {
    {"ListingOfDevices",
     [](FailureSiteTest& test) {
       test.fail(tCall::setupDiGetClassDevs, 1);
       test.list();
     },
     QUENRA_STATUS_ACCESS_DENIED, "tdeviceinterfaceiterator", 45},
    {"PathTooLong",
     [](FailureSiteTest& test) {
       nFakeWindows::machine().usePath({kSimulatorInterfaceController, 0}, std::string(252, 'p'));
       test.readPath();
     },
     QUENRA_STATUS_PATH_TOO_LONG, "tdeviceinterfaceiterator", 224},
    {"PathUnreadable",
     [](FailureSiteTest& test) {
       test.fail(tCall::setupDiGetDeviceInterfaceDetail, 1);
       test.readPath();
     },
     QUENRA_STATUS_ACCESS_DENIED, "tdeviceinterfaceiterator", 232},
    {"AssociationWithThePort",
     [](FailureSiteTest& test) {
       test.fail(tCall::createIoCompletionPort, 1);
       test.enable();
     },
     QUENRA_STATUS_ACCESS_DENIED, "tdeviceinterfaceproxy", 315},
    {"ArmingOfTheDelivery",
     [](FailureSiteTest& test) {
       test.fail(tCall::deviceIoControl, 1);
       test.enable();
     },
     QUENRA_STATUS_ACCESS_DENIED, "tdeviceinterfaceproxy", 333},
    {"Registration",
     [](FailureSiteTest& test) {
       test.fail(tCall::deviceIoControl, 2);
       test.enable();
     },
     QUENRA_STATUS_ACCESS_DENIED, "tionotification", 134},
    {"Wait",
     [](FailureSiteTest& test) {
       test.fail(tCall::getQueuedCompletionStatus, 1);
       test.wait();
     },
     QUENRA_STATUS_ACCESS_DENIED, "tionotification", 59},
    {"PayloadTooLarge", [](FailureSiteTest& test) { test.deliver(33); },
     QUENRA_STATUS_NOTIFICATION_TOO_LARGE, "tionotification", 76},
    {"WakeUp",
     [](FailureSiteTest& test) {
       test.fail(tCall::postQueuedCompletionStatus, 1);
       test.wake();
     },
     QUENRA_STATUS_ACCESS_DENIED, "tionotification", 101},
    {"StartOfTheThread",
     [](FailureSiteTest& test) {
       test.fail(tCall::beginThread, 1);
       test.start();
     },
     QUENRA_STATUS_INTERNAL_ERROR, "thread", 471},
    {"PriorityWithoutThread", [](FailureSiteTest& test) { test.setPriorityWithoutThread(); },
     QUENRA_STATUS_NOT_READY, "thread", 859},
    {"PriorityOfTheThread",
     [](FailureSiteTest& test) {
       test.fail(tCall::setThreadPriority, 1);
       test.startWithAnotherPriority();
     },
     QUENRA_STATUS_INTERNAL_ERROR, "thread", 866},
};

class FailureSite : public FailureSiteTest, public testing::WithParamInterface<tFailureSite> {};

TEST_P(FailureSite, Provoked_ReportsItsCodeAndPlace) {
  GetParam().provoke(*this);
  EXPECT_EQ(status.code, GetParam().code);
  EXPECT_STREQ(status.component, "quenra");
  EXPECT_STREQ(status.file, GetParam().file);
  EXPECT_EQ(status.line, GetParam().line);
}

INSTANTIATE_TEST_SUITE_P(Of, FailureSite, testing::ValuesIn(kFailureSites),
                         [](const auto& site) { return std::string(site.param.name); });

}  // namespace
}  // namespace nTests
