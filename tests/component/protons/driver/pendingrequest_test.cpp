#include <algorithm>
#include <atomic>
#include <cstring>
#include <thread>
#include <vector>

#include "protocol/controllerrequests.h"
#include "protocol/pendingrequests.h"
#include "quenra_status.h"
#include "tests/component/protons/driver/drivertest.h"

namespace nTests {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

// ---- Beginning and ending ----

TEST_F(PendingRequest, Begun_IsPendingUntilItIsEnded) {
  const uint64_t handle = proxy.beginPendingRequest(7, 8, 9, request, status);
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  EXPECT_NE(handle, 0u);
  EXPECT_EQ(request.handle(), handle);
  const std::vector<tSimulatorPendingRequest> pending = machine().pending();
  ASSERT_THAT(pending, SizeIs(1));
  EXPECT_EQ(pending[0].handle, handle);
  EXPECT_EQ(pending[0].a, 7u);
  EXPECT_EQ(pending[0].b, 8u);
  EXPECT_EQ(pending[0].c, 9u);

  proxy.endPendingRequest(request);
  EXPECT_EQ(request.handle(), 0u);
  EXPECT_THAT(machine().pending(), IsEmpty());
  const std::vector<tSimulatorLogEntry> completed = logged(kSimulatorEventCompleted);
  ASSERT_THAT(completed, SizeIs(1));
  EXPECT_EQ(completed[0].windowsError, 0u);
}

TEST_F(PendingRequest, EndedTwice_IsEndedOnce) {
  proxy.beginPendingRequest(1, 2, 3, request, status);
  proxy.endPendingRequest(request);
  proxy.endPendingRequest(request);
  EXPECT_THAT(logged(kSimulatorEventRequest), SizeIs(2));
}

TEST_F(PendingRequest, WithoutAHandle_IsNotEnded) {
  proxy.endPendingRequest(request);
  EXPECT_THAT(logged(kSimulatorEventRequest), IsEmpty());
}

TEST_F(PendingRequest, OnAStatusInError_IsNotBegun) {
  status.code = -1;
  EXPECT_EQ(proxy.beginPendingRequest(1, 2, 3, request, status), 0u);
  EXPECT_EQ(status.code, -1);
  EXPECT_THAT(logged(kSimulatorEventRequest), IsEmpty());
}

TEST_F(PendingRequest, OnAWarning_IsBegunAndKeepsIt) {
  status.code = 5;
  EXPECT_NE(proxy.beginPendingRequest(1, 2, 3, request, status), 0u);
  EXPECT_EQ(status.code, 5);
  proxy.endPendingRequest(request);
}

TEST_F(PendingRequest, OnAClosedProxy_ReportsItsLocation) {
  proxy.close();
  EXPECT_EQ(proxy.beginPendingRequest(1, 2, 3, request, status), 0u);
  expectFailure(QUENRA_STATUS_GENERIC_FAILURE, 115);
  EXPECT_EQ(request.handle(), 0u);
}

TEST_F(PendingRequest, ManyAtOnce_EachHaveTheirHandle) {
  std::vector<tPendingRequest> requests(SIMULATOR_PENDING_CAPACITY);
  std::vector<uint64_t> handles;
  for (tPendingRequest& each : requests) {
    handles.push_back(proxy.beginPendingRequest(1, handles.size(), 3, each, status));
  }
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  std::sort(handles.begin(), handles.end());
  EXPECT_EQ(std::unique(handles.begin(), handles.end()), handles.end());
  EXPECT_NE(handles.front(), 0u);
  // One more than the machine's limit.
  EXPECT_EQ(proxy.beginPendingRequest(1, 2, 3, request, status), 0u);
  expectFailure(QUENRA_STATUS_MEMORY_FULL, 115);
  for (tPendingRequest& each : requests) {
    proxy.endPendingRequest(each);
  }
  EXPECT_THAT(machine().pending(), IsEmpty());
}

// ---- Request contents ----

struct tSent {
  uint32_t code;
  uint32_t size;
};
bool operator==(const tSent& left, const tSent& right) {
  return left.code == right.code && left.size == right.size;
}

class PendingRequestForm : public PendingRequest {
 protected:
  tSimulatorLogEntry send(uint16_t a, uint64_t b, uint8_t c) {
    proxy.beginPendingRequest(a, b, c, request, status);
    const std::vector<tSimulatorLogEntry> sent = logged(kSimulatorEventRequest);
    EXPECT_THAT(sent, SizeIs(1));
    const std::vector<tSimulatorPendingRequest> pending = machine().pending();
    EXPECT_EQ(pending.at(0).b, b);
    proxy.endPendingRequest(request);
    machine().clearLog();
    return sent.at(0);
  }
};

TEST_F(PendingRequestForm, IsNarrowForAValueOf32Bits) {
  for (const uint64_t b : {uint64_t{0}, uint64_t{1}, uint64_t{0xFFFFFFFF}}) {
    const tSimulatorLogEntry sent = send(0xA1A2, b, 0xC1);
    EXPECT_EQ((tSent{sent.requestCode, sent.inputSize}), (tSent{0x0022FC00, 24}));
    tPendingNarrowRequest form{};
    std::memcpy(&form, sent.input, sizeof form);
    EXPECT_NE(form.handleAddress, 0u);
    EXPECT_NE(form.event, 0u);
    EXPECT_EQ(form.b, b);
    EXPECT_EQ(form.a, 0xA1A2u);
    EXPECT_EQ(form.c, 0xC1u);
    EXPECT_EQ(form.padding, 0u);
  }
}

TEST_F(PendingRequestForm, IsWideForALargerOne) {
  for (const uint64_t b : {uint64_t{0x100000000}, ~uint64_t{0}}) {
    const tSimulatorLogEntry sent = send(0xFFFF, b, 0xFF);
    EXPECT_EQ((tSent{sent.requestCode, sent.inputSize}), (tSent{0x0022FC14, 32}));
    tPendingWideRequest form{};
    std::memcpy(&form, sent.input, sizeof form);
    EXPECT_NE(form.handleAddress, 0u);
    EXPECT_NE(form.event, 0u);
    EXPECT_EQ(form.b, b);
    EXPECT_EQ(form.a, 0xFFFFu);
    EXPECT_EQ(form.c, 0xFFu);
    for (const uint8_t byte : form.padding) {
      EXPECT_EQ(byte, 0u);
    }
  }
}

TEST_F(PendingRequestForm, OfTheEndIsTheHandle) {
  const uint64_t handle = proxy.beginPendingRequest(1, 2, 3, request, status);
  machine().clearLog();
  proxy.endPendingRequest(request);
  const std::vector<tSimulatorLogEntry> sent = logged(kSimulatorEventRequest);
  ASSERT_THAT(sent, SizeIs(1));
  EXPECT_EQ((tSent{sent[0].requestCode, sent[0].inputSize}), (tSent{0x0022FC04, 8}));
  EXPECT_EQ(sent[0].outputSize, 0u);
  uint64_t named = 0;
  std::memcpy(&named, sent[0].input, sizeof named);
  EXPECT_EQ(named, handle);
}

// ---- Drivers that accept late, refuse or misbehave ----

TEST_F(PendingRequest, AcceptedLate_IsWaitedFor) {
  machine().setAcceptance(kSimulatorAcceptLater);
  std::atomic<bool> isAccepted = false;
  bool returnedAccepted = false;
  std::thread starter([&] {
    proxy.beginPendingRequest(1, 2, 3, request, status);
    returnedAccepted = isAccepted;
  });
  EXPECT_TRUE(becomesTrue([&] { return pendingCount() == 1; }));
  EXPECT_EQ(machine().pending().at(0).handle, 0u) << "not accepted yet";
  isAccepted = true;
  machine().acceptPending();
  starter.join();
  EXPECT_TRUE(returnedAccepted);
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  EXPECT_NE(request.handle(), 0u);
  proxy.endPendingRequest(request);
  EXPECT_EQ(pendingCount(), 0u);
}

TEST_F(PendingRequest, RefusedAtOnce_FailsAtTheCall) {
  script(21, REQUEST_PENDING_NARROW);  // ERROR_NOT_READY
  EXPECT_EQ(proxy.beginPendingRequest(1, 2, 3, request, status), 0u);
  EXPECT_EQ(status.code, QUENRA_STATUS_NOT_READY);
  // Windows decides whether a refusal arrives with the call or as a completion.
  EXPECT_TRUE(status.line == 115 || status.line == 110) << status.line;
  EXPECT_EQ(request.handle(), 0u);
}

TEST_F(PendingRequest, RefusedWhileWaitingToBeAccepted_FailsAfterTheWait) {
  machine().setAcceptance(kSimulatorAcceptLater);
  std::thread starter([&] { proxy.beginPendingRequest(1, 2, 3, request, status); });
  EXPECT_TRUE(becomesTrue([&] { return pendingCount() == 1; }));
  machine().completePending(0, 121);  // ERROR_SEM_TIMEOUT
  starter.join();
  expectFailure(QUENRA_STATUS_TIME_OUT, 110);
  EXPECT_EQ(request.handle(), 0u);
}

TEST_F(PendingRequest, CompletedWithoutBeingAccepted_IsNotPendingAndNoError) {
  machine().setAcceptance(kSimulatorAcceptNever);
  EXPECT_EQ(proxy.beginPendingRequest(1, 2, 3, request, status), 0u);
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  EXPECT_EQ(request.handle(), 0u);
  proxy.endPendingRequest(request);
  EXPECT_THAT(logged(kSimulatorEventRequest), SizeIs(1)) << "nothing to end";
}

TEST_F(PendingRequest, CompletedByTheDriverWithAnError_IsStillTheCallersToEnd) {
  const uint64_t handle = proxy.beginPendingRequest(1, 2, 3, request, status);
  ASSERT_NE(handle, 0u);
  machine().completePending(handle, 121);
  EXPECT_EQ(pendingCount(), 0u);
  // The driver no longer knows the handle and refuses; the request is released nevertheless.
  proxy.endPendingRequest(request);
  EXPECT_EQ(request.handle(), 0u);
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  EXPECT_EQ(logged(kSimulatorEventRequest).back().windowsError, 1168u);
}

TEST_F(PendingRequest, ThatTheDriverRefusesToEnd_LeavesTheCallerFree) {
  ASSERT_NE(proxy.beginPendingRequest(1, 2, 3, request, status), 0u);
  script(5, REQUEST_END_PENDING);  // ERROR_ACCESS_DENIED
  proxy.endPendingRequest(request);
  EXPECT_EQ(request.handle(), 0u);
  EXPECT_EQ(pendingCount(), 1u) << "the driver keeps it";
  proxy.close();
  EXPECT_TRUE(becomesTrue([&] { return pendingCount() == 0; })) << "until the device is closed";
}

TEST_F(PendingRequest, WithAnInvalidEvent_IsRefusedByTheDriver) {
  tPendingNarrowRequest form{};
  uint64_t handle = 0;
  form.handleAddress = reinterpret_cast<uintptr_t>(&handle);
  form.event = 0xABCDE0;
  proxy.deviceControl(REQUEST_PENDING_NARROW, &form, sizeof form, nullptr, 0, status);
  EXPECT_EQ(status.code, QUENRA_STATUS_GENERIC_FAILURE);
  EXPECT_EQ(pendingCount(), 0u);
}

TEST_F(PendingRequest, WithAnAddressThatCannotBeWritten_IsRefusedByTheDriver) {
  tPendingNarrowRequest form{};
  form.handleAddress = 16;
  proxy.deviceControl(REQUEST_PENDING_NARROW, &form, sizeof form, nullptr, 0, status);
  EXPECT_LT(status.code, QUENRA_STATUS_SUCCESS);
  EXPECT_EQ(pendingCount(), 0u);
}

// ---- Concurrent calls ----

TEST_F(PendingRequest, LetsOtherCallsThrough) {
  ASSERT_NE(proxy.beginPendingRequest(1, 2, 3, request, status), 0u);
  for (int i = 0; i < 10; ++i) {
    const tExchangeValuesRequest exchange{};
    tExchangeValuesReply reply{};
    EXPECT_EQ(proxy.deviceControl(REQUEST_EXCHANGE_VALUES, &exchange, sizeof exchange, &reply,
                                  sizeof reply, status),
              sizeof reply);
    EXPECT_EQ(reply.driverStatus, DRIVER_STATUS_BUFFER_TOO_SMALL);
  }
  EXPECT_EQ(pendingCount(), 1u);
  proxy.endPendingRequest(request);
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
}

TEST_F(PendingRequest, BegunAndEndedByManyThreadsBesideOtherCalls_LeavesNothing) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([this, i] {
      for (int round = 0; round < 20; ++round) {
        tStatus own;
        tPendingRequest ownRequest;
        const uint64_t b = i % 2 == 0 ? 5 : uint64_t{5} << 32;
        EXPECT_NE(proxy.beginPendingRequest(1, b, 3, ownRequest, own), 0u);
        const tExchangeValuesRequest exchange{};
        tExchangeValuesReply reply{};
        proxy.deviceControl(REQUEST_EXCHANGE_VALUES, &exchange, sizeof exchange, &reply,
                            sizeof reply, own);
        proxy.endPendingRequest(ownRequest);
        EXPECT_EQ(own.code, QUENRA_STATUS_SUCCESS);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(pendingCount(), 0u);
}

// ---- After the device was closed or its owner ended ----

TEST_F(PendingRequest, WhoseDeviceIsClosed_IsCancelled) {
  ASSERT_NE(proxy.beginPendingRequest(1, 2, 3, request, status), 0u);
  proxy.close();
  EXPECT_TRUE(becomesTrue([&] { return pendingCount() == 0; }));
  const std::vector<tSimulatorLogEntry> completed = logged(kSimulatorEventCompleted);
  ASSERT_THAT(completed, SizeIs(1));
  EXPECT_EQ(completed[0].windowsError, 995u);
  proxy.endPendingRequest(request);
  EXPECT_EQ(request.handle(), 0u);
}

TEST_F(PendingRequest, OfAnotherFile_CannotBeEnded) {
  const uint64_t handle = proxy.beginPendingRequest(1, 2, 3, request, status);
  tDeviceInterfaceProxy other;
  openController(other, status);
  ASSERT_EQ(status.code, QUENRA_STATUS_SUCCESS);
  const tEndPendingRequest end{handle};
  tStatus refused;
  other.deviceControl(REQUEST_END_PENDING, &end, sizeof end, nullptr, 0, refused);
  EXPECT_LT(refused.code, 0);
  EXPECT_EQ(pendingCount(), 1u);
  proxy.endPendingRequest(request);
  EXPECT_EQ(pendingCount(), 0u);
}

TEST_F(PendingRequest, OutlivingItsProxy_TouchesItNoMore) {
  auto ownProxy = std::make_unique<tDeviceInterfaceProxy>();
  openController(*ownProxy, status);
  ASSERT_NE(ownProxy->beginPendingRequest(1, 2, 3, request, status), 0u);
  ownProxy.reset();
  EXPECT_TRUE(becomesTrue([&] { return pendingCount() == 0; }));
  EXPECT_NE(request.handle(), 0u) << "ending it would take a proxy";
  request = {};
}

TEST_F(PendingRequest, ResetMachine_CompletesWhatIsPending) {
  ASSERT_NE(proxy.beginPendingRequest(1, 2, 3, request, status), 0u);
  machine().reset();
  EXPECT_EQ(pendingCount(), 0u);
  proxy.endPendingRequest(request);
}

}  // namespace
}  // namespace nTests
