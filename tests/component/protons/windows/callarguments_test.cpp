// Arguments with which the platform layer calls Windows.
#include <atomic>
#include <cstring>
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

void ignoreNotice(uint32_t, tIONotification*, const uint8_t*, uint32_t, tStatus&) noexcept {}

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
