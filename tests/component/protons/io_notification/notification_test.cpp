#include <algorithm>
#include <atomic>
#include <cstring>
#include <mutex>
#include <thread>

#include "protocol/pendingrequests.h"
#include "quenra_status.h"
#include "tests/component/protons/io_notification/notificationtest.h"

namespace nTests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// ---- A reader without a thread ----

class NotificationReader : public NotificationTest {
 protected:
  void SetUp() override {
    NotificationTest::SetUp();
    useVirtualTime();
    reader = std::make_unique<tIONotificationReader>(makePort());
  }
  void TearDown() override {
    notification.disable();
    reader.reset();
    NotificationTest::TearDown();
  }

  std::unique_ptr<tIONotificationReader> reader;
  tIONotification notification;
};

TEST_F(NotificationReader, WakeUp_EndsTheWait) {
  reader->wake(status);
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  const tNotice notice = waitOn(*reader);
  EXPECT_EQ(notice.kind, kWakeUp);
  EXPECT_EQ(notice.notification, nullptr);
  EXPECT_EQ(notice.payload, "");
}

TEST_F(NotificationReader, NoNoticeInTime_ReportsATimeOut) {
  const tNotice notice = waitOn(*reader, kShortTime);
  EXPECT_EQ(notice.code, QUENRA_STATUS_TIME_OUT);
  EXPECT_EQ(notice.line, 59u);
  EXPECT_EQ(notice.notification, nullptr);
  EXPECT_EQ(notice.kind, kDelivered) << "no wake-up";
  EXPECT_EQ(notice.payload, "");
}

TEST_F(NotificationReader, OnAStatusInError_WaitsAndWakesNot) {
  status.code = -1;
  reader->wake(status);
  uint32_t kind = 99;
  uint8_t payload[32];
  uint32_t size = 99;
  EXPECT_EQ(reader->wait(kind, payload, size, status, kLongTime), nullptr);
  EXPECT_EQ(kind, kDelivered);
  EXPECT_EQ(size, 0u);
  EXPECT_EQ(status.code, -1);
}

TEST_F(NotificationReader, Enabled_ReceivesThePayload) {
  EXPECT_TRUE(notification.enable(*reader, proxy, kMask, status));
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  EXPECT_TRUE(notification.isEnabled());
  notify("seven");
  const tNotice notice = waitOn(*reader);
  EXPECT_EQ(notice.notification, &notification);
  EXPECT_EQ(notice.kind, kDelivered);
  EXPECT_EQ(notice.payload, "seven");
  EXPECT_EQ(notice.code, 0);
}

TEST_F(NotificationReader, Requests_AreAsTheDriverKnowsThem) {
  notification.enable(*reader, proxy, kMask, status);
  const std::vector<tSimulatorLogEntry> sent = logged(kSimulatorEventRequest);
  ASSERT_THAT(sent, SizeIs(2));
  EXPECT_EQ(sent[0].requestCode, 0x0022FC0Cu);
  EXPECT_EQ(sent[0].inputSize, 0u);
  EXPECT_EQ(sent[1].requestCode, 0x0022FC08u);
  EXPECT_EQ(sent[1].inputSize, 16u);
  tRegisterNotificationRequest sentRequest{};
  std::memcpy(&sentRequest, sent[1].input, sizeof sentRequest);
  EXPECT_EQ(sentRequest.notification, notification.address());
  EXPECT_EQ(sentRequest.mask, kMask);
  EXPECT_EQ(sentRequest.padding, 0u);
  machine().clearLog();
  notification.disable();
  const std::vector<tSimulatorLogEntry> ended = logged(kSimulatorEventRequest);
  ASSERT_THAT(ended, SizeIs(1));
  EXPECT_EQ(ended[0].requestCode, 0x0022FC10u);
  EXPECT_EQ(ended[0].inputSize, 4u);
  EXPECT_EQ(std::memcmp(ended[0].input, "\x00\x00\x00\x80", 4), 0);
}

TEST_F(NotificationReader, ManyNotices_AllArriveInOrder) {
  notification.enable(*reader, proxy, kMask, status);
  for (char letter = 'a'; letter <= 'j'; ++letter) {
    notify(std::string(1, letter));
  }
  std::string received;
  for (int i = 0; i < 10; ++i) {
    received += waitOn(*reader).payload;
  }
  EXPECT_EQ(received, "abcdefghij");
  EXPECT_EQ(requests(REQUEST_ARM_DELIVERY), 11u) << "armed again after each";
}

TEST_F(NotificationReader, PayloadOf32Bytes_IsDeliveredComplete) {
  notification.enable(*reader, proxy, kMask, status);
  const std::string payload = "0123456789abcdefghijklmnopqrstuv";
  ASSERT_EQ(payload.size(), 32u);
  notify(payload);
  EXPECT_EQ(waitOn(*reader).payload, payload);
  notify("");
  EXPECT_EQ(waitOn(*reader).payload, "");
}

TEST_F(NotificationReader, PayloadThatIsTooLarge_IsRefusedAndNothingMoreDelivered) {
  for (const uint32_t size : {33u, 48u, 0xFFFFFFFFu}) {
    notification.enable(*reader, proxy, kMask, status);
    tSimulatorNotice tooLarge{};
    tooLarge.mask = kMask;
    tooLarge.payloadSize = size;
    machine().notify(tooLarge);
    const tNotice notice = waitOn(*reader);
    EXPECT_EQ(notice.code, QUENRA_STATUS_NOTIFICATION_TOO_LARGE) << size;
    EXPECT_EQ(notice.line, 76u);
    EXPECT_EQ(notice.notification, nullptr);
    EXPECT_EQ(notice.kind, kDelivered);
    EXPECT_EQ(notice.payload, "");
    const size_t armed = requests(REQUEST_ARM_DELIVERY);
    notify("held back");
    EXPECT_EQ(waitOn(*reader, kShortTime).code, QUENRA_STATUS_TIME_OUT);
    EXPECT_EQ(requests(REQUEST_ARM_DELIVERY), armed);
    // Only closing the device lets the reader arm a delivery again.
    notification.disable();
    proxy.close();
    while (waitOn(*reader, kShortTime).code == 0) {
    }
    openController(proxy, status);
  }
}

TEST_F(NotificationReader, NoticeForAnUnknownAddress_HasNoNotification) {
  notification.enable(*reader, proxy, kMask, status);
  notify("stray", kMask, 0xDEADBEEF0);
  tNotice notice = waitOn(*reader);
  EXPECT_EQ(notice.notification, nullptr);
  EXPECT_EQ(notice.kind, kDelivered);
  EXPECT_EQ(notice.code, 0);
  notify("truth");
  notice = waitOn(*reader);
  EXPECT_EQ(notice.notification, &notification) << "the next is delivered all the same";
  EXPECT_EQ(notice.payload, "truth");
}

TEST_F(NotificationReader, NoticeForADestroyedNotification_HasNoNotification) {
  auto gone = std::make_unique<tIONotification>();
  gone->enable(*reader, proxy, 1, status);
  notification.enable(*reader, proxy, kMask, status);
  const uint64_t address = gone->address();
  gone->disable();
  while (waitOn(*reader, kShortTime).code == 0) {
  }
  gone.reset();
  notify("late", kMask, address);
  EXPECT_EQ(waitOn(*reader).notification, nullptr);
}

TEST_F(NotificationReader, SecondNotificationOnTheSameProxy_SharesItsDelivery) {
  tIONotification second;
  EXPECT_TRUE(notification.enable(*reader, proxy, 1, status));
  EXPECT_TRUE(second.enable(*reader, proxy, 2, status));
  EXPECT_EQ(requests(REQUEST_ARM_DELIVERY), 1u);
  notify("first", 1);
  notify("second", 2);
  notify("both", 3);
  tNotice notice = waitOn(*reader);
  EXPECT_EQ(notice.notification, &notification);
  EXPECT_EQ(notice.payload, "first");
  notice = waitOn(*reader);
  EXPECT_EQ(notice.notification, &second);
  EXPECT_EQ(notice.payload, "second");
  EXPECT_EQ(waitOn(*reader).notification, &notification);
  EXPECT_EQ(waitOn(*reader).notification, &second);
  second.disable();
}

TEST_F(NotificationReader, OfAnotherReader_CannotShareAProxy) {
  tIONotificationReader other(makePort());
  tIONotification second;
  ASSERT_TRUE(notification.enable(*reader, proxy, 1, status));
  EXPECT_FALSE(second.enable(other, proxy, 2, status));
  expectFailure(QUENRA_STATUS_INVALID_PARAMETER, 315);
  EXPECT_FALSE(second.isEnabled());
  notify("first", 1);
  EXPECT_EQ(waitOn(*reader).payload, "first") << "the first goes on";
}

TEST_F(NotificationReader, EnabledAtSecondReader_FirstReader_NoLongerKnowsIt) {
  tDeviceInterfaceProxy secondProxy;
  openController(secondProxy, status);
  tIONotificationReader secondReader(makePort());
  tIONotification keeper;  // keeps the first reader's delivery armed
  ASSERT_TRUE(keeper.enable(*reader, proxy, 1, status));
  ASSERT_TRUE(notification.enable(*reader, proxy, 2, status));
  ASSERT_TRUE(notification.enable(secondReader, secondProxy, kMask, status));

  const tNotice ended = waitOn(*reader);
  EXPECT_EQ(ended.kind, kRegistrationEnded);
  EXPECT_EQ(ended.notification, nullptr);
  notify("misaddressed", 1, notification.address());
  EXPECT_EQ(waitOn(*reader).notification, nullptr);
  notify("right");
  EXPECT_EQ(waitOn(secondReader).notification, &notification);
  notification.disable();
  keeper.disable();
}

TEST_F(NotificationReader, Disabled_ReportsTheEndOfItsRegistration) {
  notification.enable(*reader, proxy, kMask, status);
  notification.disable();
  EXPECT_FALSE(notification.isEnabled());
  const tNotice notice = waitOn(*reader);
  EXPECT_EQ(notice.kind, kRegistrationEnded);
  EXPECT_EQ(notice.notification, &notification);
  EXPECT_EQ(notice.payload, "");
  EXPECT_THROW(notify("unregistered"), nSimulator::tControlError);
  notification.disable();
  EXPECT_EQ(requests(REQUEST_UNREGISTER_NOTIFICATION), 1u);
}

TEST_F(NotificationReader, DisabledOnAClosedProxy_SendsNothing) {
  notification.enable(*reader, proxy, kMask, status);
  proxy.close();
  notification.disable();
  EXPECT_FALSE(notification.isEnabled());
  EXPECT_EQ(requests(REQUEST_UNREGISTER_NOTIFICATION), 0u);
}

TEST_F(NotificationReader, EnabledAgain_IsRegisteredOnce) {
  notification.enable(*reader, proxy, kMask, status);
  EXPECT_TRUE(notification.enable(*reader, proxy, kMask, status));
  const tNotice first = waitOn(*reader);
  EXPECT_EQ(first.kind, kRegistrationEnded) << "the earlier registration";
  EXPECT_EQ(first.notification, &notification) << "identified although a later one exists";
  notify("once");
  EXPECT_EQ(waitOn(*reader).payload, "once");
  EXPECT_EQ(waitOn(*reader, kShortTime).code, QUENRA_STATUS_TIME_OUT);
}

TEST_F(NotificationReader, EnabledOnAStatusInError_SendsNothing) {
  status.code = -1;
  EXPECT_FALSE(notification.enable(*reader, proxy, kMask, status));
  EXPECT_THAT(logged(kSimulatorEventRequest), IsEmpty());
}

TEST_F(NotificationReader, EnabledOnAClosedProxy_Fails) {
  proxy.close();
  EXPECT_FALSE(notification.enable(*reader, proxy, kMask, status));
  EXPECT_LT(status.code, QUENRA_STATUS_SUCCESS);
  EXPECT_EQ(status.line, 315u);
}

TEST_F(NotificationReader, ReopenedProxy_IsAssociatedAgain) {
  notification.enable(*reader, proxy, kMask, status);
  notification.disable();
  proxy.close();
  while (waitOn(*reader, kShortTime).code == 0) {
  }
  openController(proxy, status);
  EXPECT_TRUE(notification.enable(*reader, proxy, kMask, status));
  notify("again");
  EXPECT_EQ(waitOn(*reader).payload, "again");
}

TEST_F(NotificationReader, OrdinaryRequests_NeverReachThePort) {
  notification.enable(*reader, proxy, kMask, status);
  tPendingRequest request;
  EXPECT_NE(proxy.beginPendingRequest(1, 2, 3, request, status), 0u);
  proxy.endPendingRequest(request);
  EXPECT_EQ(waitOn(*reader, kShortTime).code, QUENRA_STATUS_TIME_OUT);
}

TEST_F(NotificationReader, RefusedRegistration_ReportsItsLocation) {
  script(5, REQUEST_REGISTER_NOTIFICATION);
  const bool enabled = notification.enable(*reader, proxy, kMask, status);
  // A driver's refusal arrives with the call, or as a failed completion, which readers skip.
  if (!enabled) {
    EXPECT_EQ(status.code, QUENRA_STATUS_ACCESS_DENIED);
    EXPECT_EQ(status.line, 134u);
    EXPECT_STREQ(status.file, "tionotification");
  }
  EXPECT_EQ(waitOn(*reader, kShortTime).code, QUENRA_STATUS_TIME_OUT)
      << "failed completions are skipped";
}

TEST_F(NotificationReader, DeliveryThatFails_IsSkipped) {
  notification.enable(*reader, proxy, kMask, status);
  notify("one");
  script(5, REQUEST_ARM_DELIVERY);
  EXPECT_EQ(waitOn(*reader).payload, "one") << "a failure to arm again is not reported";
  notify("two");
  EXPECT_EQ(waitOn(*reader, kShortTime).code, QUENRA_STATUS_TIME_OUT);
}

// ---- A reader with a thread ----

// The arguments of the callback, recorded for the tests.
struct tReceived {
  std::mutex mutex;
  std::vector<std::string> payloads;
  std::vector<uint32_t> kinds;
  std::atomic<bool> isInside = false;
  std::atomic<bool> mayLeave = true;

  void reset() {
    const std::lock_guard lock(mutex);
    payloads.clear();
    kinds.clear();
    isInside = false;
    mayLeave = true;
  }
  size_t count() {
    const std::lock_guard lock(mutex);
    return kinds.size();
  }
};
tReceived received;

void receive(uint32_t kind, tIONotification*, const uint8_t* payload, uint32_t payloadSize,
             tStatus&) noexcept {
  {
    const std::lock_guard lock(received.mutex);
    received.kinds.push_back(kind);
    received.payloads.emplace_back(payload, payload + payloadSize);
  }
  received.isInside = true;
  while (!received.mayLeave) {
    Sleep(1);
  }
  received.isInside = false;
}

// Threads that run freely.
class ThreadedReaderLoad : public NotificationTest {
 protected:
  void SetUp() override {
    NotificationTest::SetUp();
    received.reset();
    reader = std::make_unique<tThreadedIONotificationReader>(makePort());
  }
  void TearDown() override {
    notification.disable();
    reader.reset();
    NotificationTest::TearDown();
  }

  std::unique_ptr<tThreadedIONotificationReader> reader;
  tIONotification notification;
};

class ThreadedReader : public ThreadedReaderLoad {
 protected:
  void SetUp() override {
    ThreadedReaderLoad::SetUp();
    useVirtualTime();
  }
};

TEST_F(ThreadedReader, HandsEveryNoticeToItsCallback) {
  reader->start(receive, status);
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  EXPECT_TRUE(reader->isRunning());
  notification.enable(*reader, proxy, kMask, status);
  notify("one");
  notify("two");
  EXPECT_TRUE(becomesTrue([] { return received.count() == 2; }));
  notification.disable();
  EXPECT_TRUE(becomesTrue([] { return received.count() == 3; }));
  reader.reset();
  EXPECT_THAT(received.kinds, ElementsAre(kDelivered, kDelivered, kRegistrationEnded));
  EXPECT_THAT(received.payloads, ElementsAre("one", "two", ""));
}

TEST_F(ThreadedReader, WokenBeforeAnything_EndsWithoutACallback) {
  tStatus woken;
  reader->wake(woken);
  reader->start(receive, status);
  reader.reset();
  EXPECT_EQ(received.count(), 0u);
}

TEST_F(ThreadedReader, NeverStarted_EndsAtOnce) {
  EXPECT_FALSE(reader->isRunning());
  reader.reset();
  EXPECT_EQ(received.count(), 0u);
}

TEST_F(ThreadedReader, StartedOnAStatusInError_IsNot) {
  status.code = -1;
  reader->start(receive, status);
  EXPECT_FALSE(reader->isRunning());
  EXPECT_EQ(status.code, -1);
}

TEST_F(ThreadedReader, DestroyedWhileItsCallbackRuns_WaitsForIt) {
  reader->start(receive, status);
  notification.enable(*reader, proxy, kMask, status);
  received.mayLeave = false;
  notify("slow");
  EXPECT_TRUE(becomesTrue([] { return received.isInside.load(); }));
  std::atomic<bool> destroyed = false;
  tTestThread destroyer([&] {
    notification.disable();
    reader.reset();
    destroyed = true;
  });
  letOthersRun();
  EXPECT_FALSE(destroyed);
  received.mayLeave = true;
  destroyer.join();
  EXPECT_TRUE(destroyed);
  EXPECT_FALSE(received.isInside);
}

TEST_F(ThreadedReader, CallbackRunning_DisableDoesNotWaitForIt) {
  reader->start(receive, status);
  notification.enable(*reader, proxy, kMask, status);
  received.mayLeave = false;
  notify("slow");
  ASSERT_TRUE(becomesTrue([] { return received.isInside.load(); }));
  notification.disable();
  EXPECT_TRUE(received.isInside) << "the callback has not returned yet";
  received.mayLeave = true;
}

TEST_F(ThreadedReaderLoad, EnabledAgainWhileNoticesArrive_EndsEveryRegistrationOnce) {
  constexpr size_t kRounds = 50;
  reader->start(receive, status);
  for (size_t round = 0; round < kRounds; ++round) {
    ASSERT_TRUE(notification.enable(*reader, proxy, kMask, status));
    notify("x");
  }
  notification.disable();
  const auto ended = [] {
    const std::lock_guard lock(received.mutex);
    return std::count(received.kinds.begin(), received.kinds.end(), kRegistrationEnded);
  };
  EXPECT_TRUE(becomesTrue([&] { return ended() == kRounds; }));
  reader.reset();
  EXPECT_EQ(ended(), kRounds);
}

TEST_F(ThreadedReaderLoad, DestroyedWhileNoticesArrive_LosesThemAndNothingElse) {
  for (int round = 0; round < 10; ++round) {
    received.reset();
    tStatus own;
    auto ownReader = std::make_unique<tThreadedIONotificationReader>(makePort());
    ownReader->start(receive, own);
    tDeviceInterfaceProxy ownProxy;
    openController(ownProxy, own);
    tIONotification ownNotification;
    ownNotification.enable(*ownReader, ownProxy, kMask, own);
    ASSERT_EQ(own.code, QUENRA_STATUS_SUCCESS);
    std::atomic<bool> over = false;
    std::thread teller([&] {
      nSimulator::tSimulatedMachine telling;
      tSimulatorNotice notice{};
      notice.mask = kMask;
      while (!over) {
        try {
          telling.notify(notice);
        } catch (const nSimulator::tControlError&) {
          // No reader is registered any more, or the driver holds too many notices back.
        }
      }
    });
    EXPECT_TRUE(becomesTrue([] { return received.count() > 3; }));
    ownNotification.disable();
    ownReader.reset();
    const size_t count = received.count();
    ownProxy.close();
    over = true;
    teller.join();
    EXPECT_EQ(received.count(), count) << "no more notices";
  }
}

TEST_F(ThreadedReaderLoad, ManyNotificationsEnabledAtOnce_AssociateTheirProxyOnce) {
  reader->start(receive, status);
  std::vector<std::unique_ptr<tIONotification>> many;
  for (int i = 0; i < 8; ++i) {
    many.push_back(std::make_unique<tIONotification>());
  }
  std::vector<std::thread> threads;
  for (auto& each : many) {
    threads.emplace_back([this, &each] {
      tStatus own;
      EXPECT_TRUE(each->enable(*reader, proxy, 1, own));
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(requests(REQUEST_ARM_DELIVERY), 1u);
  notify("all", 1);
  EXPECT_TRUE(becomesTrue([] { return received.count() == 8; }));
  for (auto& each : many) {
    each->disable();
  }
  reader.reset();
}

}  // namespace
}  // namespace nTests
