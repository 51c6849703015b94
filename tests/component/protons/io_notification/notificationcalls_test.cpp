// The Windows calls of discovery and notifications: code and location of each failure, and the arguments.
#include <atomic>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "quenra_status.h"
#include "tests/component/protons/io_notification/notificationtest.h"
#include "tests/fakewindows/debugger.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::tCall;
using nFakeWindows::tRaisedException;
using nQUENRA1400::nZOAPAL000::tThread;

// ---- Failures ----

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

TEST_P(FailureSite, Provoked_ReportsItsCodeAndLocation) {
  GetParam().provoke(*this);
  EXPECT_EQ(status.code, GetParam().code);
  EXPECT_STREQ(status.component, "quenra");
  EXPECT_STREQ(status.file, GetParam().file);
  EXPECT_EQ(status.line, GetParam().line);
}

INSTANTIATE_TEST_SUITE_P(Of, FailureSite, testing::ValuesIn(kFailureSites),
                         [](const auto& site) { return std::string(site.param.name); });

// ---- Arguments ----

constexpr const char* kManualResetNotSignalled = "manual-reset, not signalled";

std::vector<std::string> argumentsOf(tCall call) {
  std::vector<std::string> arguments;
  for (const nFakeWindows::tCallRecord& record : faultPlan().calls()) {
    if (record.call == call) {
      arguments.push_back(record.argument);
    }
  }
  return arguments;
}

class CallArguments : public NotificationTest {
 protected:
  void SetUp() override {
    NotificationTest::SetUp();
    faultPlan().reset();
  }
};

TEST_F(CallArguments, EventOfAnOpenProxy_IsManualResetAndNotSignalled) {
  proxy.close();
  faultPlan().reset();
  openController(proxy, status);
  EXPECT_EQ(argumentsOf(tCall::createEvent), std::vector<std::string>{kManualResetNotSignalled});
}

TEST_F(CallArguments, EventsOfAPendingRequest_AreManualResetAndNotSignalled) {
  tPendingRequest request;
  EXPECT_NE(proxy.beginPendingRequest(1, 2, 3, request, status), 0u);
  const std::vector<std::string> events = argumentsOf(tCall::createEvent);
  // One that the driver signals, one for the request itself.
  EXPECT_EQ(events, (std::vector<std::string>{kManualResetNotSignalled, kManualResetNotSignalled}));
  proxy.endPendingRequest(request);
}

TEST_F(CallArguments, WakePacket_Has48BytesWithoutKeyAndOverlapped) {
  tIONotificationReader reader(makePort());
  reader.wake(status);
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  DWORD bytes = 0;
  ULONG_PTR key = 1;
  OVERLAPPED other{};
  OVERLAPPED* overlapped = &other;
  EXPECT_TRUE(GetQueuedCompletionStatus(reader.port(), &bytes, &key, &overlapped, 0));
  EXPECT_EQ(bytes, 48u);
  EXPECT_EQ(key, 0u);
  EXPECT_EQ(overlapped, nullptr);
}

TEST_F(CallArguments, ReaderThread_WaitsWithoutTimeLimit) {
  {
    tThreadedIONotificationReader reader(makePort());
    reader.start(ignoreNotice, status);
  }
  const std::vector<std::string> waits = argumentsOf(tCall::getQueuedCompletionStatus);
  EXPECT_EQ(waits, std::vector<std::string>{std::to_string(INFINITE)});
}

TEST_F(CallArguments, PriorityOfAReaderThread_BecomesNormal) {
  nFakeWindows::startThreadsWithPriority(THREAD_PRIORITY_LOWEST);
  {
    tThreadedIONotificationReader reader(makePort());
    reader.start(ignoreNotice, status);
    nFakeWindows::startThreadsWithPriority(THREAD_PRIORITY_NORMAL);
    EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  }
  EXPECT_EQ(argumentsOf(tCall::setThreadPriority),
            std::vector<std::string>{std::to_string(THREAD_PRIORITY_NORMAL)});
}

// The record as debuggers declare it.
struct tThreadNameRecord {
  DWORD type;
  const char* name;
  DWORD threadId;
  DWORD flags;
};

std::atomic<DWORD> callbackThread = 0;

void noteThread(uint32_t, tIONotification*, const uint8_t*, uint32_t, tStatus&) noexcept {
  callbackThread = GetCurrentThreadId();
}

TEST_F(CallArguments, NameOfAReaderThread_IsRaisedAsTheRecordOfDebuggers) {
  static_cast<void>(nFakeWindows::takeRaisedExceptions());
  // A failed wait reaches the callback as well.
  faultPlan().failCall(tCall::getQueuedCompletionStatus, 1, ERROR_ACCESS_DENIED);
  {
    tThreadedIONotificationReader reader(makePort());
    reader.start(noteThread, status);
  }
  const std::vector<tRaisedException> raised = nFakeWindows::takeRaisedExceptions();
  ASSERT_EQ(raised.size(), 1u);
  EXPECT_EQ(raised[0].code, 0x406D1388u);
  EXPECT_EQ(raised[0].flags, 0u) << "a debugger may continue";
  ASSERT_EQ(raised[0].arguments.size() * sizeof(ULONG_PTR), sizeof(tThreadNameRecord));
  tThreadNameRecord record{};
  std::memcpy(&record, raised[0].arguments.data(), sizeof record);
  EXPECT_EQ(record.type, 0x1000u);
  EXPECT_STREQ(record.name, "quenra");
  EXPECT_EQ(record.threadId, callbackThread);
  EXPECT_EQ(record.flags, 0u);
}

}  // namespace
}  // namespace nTests
