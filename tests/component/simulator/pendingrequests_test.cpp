#include <gmock/gmock.h>

#include "protocol/pendingrequests.h"
#include "tests/component/simulator/modeltest.h"

namespace nTests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr auto kController = kSimulatorInterfaceController;
constexpr uint64_t kHandleAddress = 0x100;
constexpr uint64_t kEvent = 0x44;

class ModelPending : public ModelTest {
 protected:
  static std::vector<uint8_t> narrow(uint64_t handleAddress = kHandleAddress) {
    tPendingNarrowRequest arguments{};
    arguments.handleAddress = handleAddress;
    arguments.event = kEvent;
    arguments.b = 5;
    arguments.a = 6;
    arguments.c = 7;
    return bytes(arguments);
  }
  uint32_t begin(uint64_t token, uint64_t file = 1) {
    return request(kController, REQUEST_PENDING_NARROW, narrow(), 0, token, file).windowsError;
  }
  uint32_t end(uint64_t handle, uint64_t file = 1) {
    return request(kController, REQUEST_END_PENDING, bytes(tEndPendingRequest{handle}), 0, 0, file)
        .windowsError;
  }
  uint64_t receivedHandle() const {
    uint64_t handle = 0;
    std::memcpy(&handle, memory.data() + kHandleAddress, sizeof handle);
    return handle;
  }
  std::vector<tSimulatorPendingRequest> pending() {
    return records<tSimulatorPendingRequest>(SIMULATOR_READ_PENDING, SIMULATOR_PENDING_CAPACITY);
  }
  uint32_t complete(uint64_t handle, uint32_t windowsError) {
    return control(SIMULATOR_COMPLETE_PENDING, tSimulatorCompletion{handle, windowsError, 0})
        .windowsError;
  }
  void accept(tSimulatorAcceptance acceptance) {
    ASSERT_EQ(control(SIMULATOR_SET_ACCEPTANCE, static_cast<uint32_t>(acceptance)).windowsError,
              kWindowsErrorNone);
  }
};

TEST_F(ModelPending, Request_IsAcceptedOnceItsHostIsReady) {
  EXPECT_EQ(begin(11), kWindowsErrorIoPending);
  EXPECT_THAT(signalled, ElementsAre(kEvent));
  EXPECT_NE(receivedHandle(), 0u);
  EXPECT_THAT(completions, IsEmpty());
  ASSERT_THAT(pending(), SizeIs(1));
  const tSimulatorPendingRequest record = pending()[0];
  EXPECT_EQ(record.handle, receivedHandle());
  EXPECT_EQ(record.process, kProcess);
  EXPECT_EQ(record.b, 5u);
  EXPECT_EQ(record.a, 6u);
  EXPECT_EQ(record.c, 7u);
}

TEST_F(ModelPending, WideRequest_KeepsItsWideValue) {
  tPendingWideRequest arguments{};
  arguments.handleAddress = kHandleAddress;
  arguments.event = kEvent;
  arguments.b = 0x123456789A;
  EXPECT_EQ(request(kController, REQUEST_PENDING_WIDE, bytes(arguments), 0, 11).windowsError,
            kWindowsErrorIoPending);
  EXPECT_EQ(pending()[0].b, 0x123456789Au);
}

TEST_F(ModelPending, EveryInterfaceOfTheDriver_AcceptsThem) {
  for (const auto kind :
       {kSimulatorInterfaceController, kSimulatorInterfaceMarten, kSimulatorInterfaceDevicePath}) {
    EXPECT_EQ(request(kind, REQUEST_PENDING_NARROW, narrow(), 0, 11).windowsError,
              kWindowsErrorIoPending);
  }
  EXPECT_EQ(control(REQUEST_PENDING_NARROW, narrow()).windowsError, kWindowsErrorInvalidFunction);
}

TEST_F(ModelPending, RequestOfAWrongSize_IsRejected) {
  std::vector<uint8_t> arguments = narrow();
  arguments.push_back(0);
  EXPECT_EQ(request(kController, REQUEST_PENDING_NARROW, arguments, 0, 11).windowsError,
            kWindowsErrorInvalidParameter);
  arguments.resize(23);
  EXPECT_EQ(request(kController, REQUEST_PENDING_NARROW, arguments, 0, 11).windowsError,
            kWindowsErrorInvalidParameter);
  EXPECT_EQ(request(kController, REQUEST_PENDING_WIDE, narrow(), 0, 11).windowsError,
            kWindowsErrorInvalidParameter);
  EXPECT_EQ(request(kController, REQUEST_END_PENDING, arguments, 0).windowsError,
            kWindowsErrorInvalidParameter);
  EXPECT_THAT(pending(), IsEmpty());
}

TEST_F(ModelPending, RequestThatItsHostCannotKeepPending_IsRejected) {
  EXPECT_EQ(begin(0), kWindowsErrorInvalidParameter);
}

TEST_F(ModelPending, EndedRequest_CompletesWithSuccess) {
  begin(11);
  EXPECT_EQ(end(receivedHandle()), kWindowsErrorNone);
  EXPECT_THAT(completions, ElementsAre(tCompletion{11, kWindowsErrorNone}));
  EXPECT_THAT(pending(), IsEmpty());
  EXPECT_EQ(end(receivedHandle()), kWindowsErrorNotFound) << "it has ended";
}

TEST_F(ModelPending, Handle_BelongsToItsFile) {
  begin(11, 1);
  EXPECT_EQ(end(receivedHandle(), 2), kWindowsErrorNotFound);
  EXPECT_EQ(end(0), kWindowsErrorNotFound);
  EXPECT_THAT(pending(), SizeIs(1));
}

TEST_F(ModelPending, Handles_AreNeverUsedTwice) {
  begin(11);
  const uint64_t first = receivedHandle();
  end(first);
  begin(12);
  EXPECT_NE(receivedHandle(), first);
}

TEST_F(ModelPending, WaitingRequest_IsAcceptedOnCommand) {
  accept(kSimulatorAcceptLater);
  begin(11);
  begin(12);
  EXPECT_THAT(signalled, IsEmpty());
  EXPECT_EQ(pending()[0].handle, 0u);
  EXPECT_EQ(end(0), kWindowsErrorNotFound) << "0 is not a handle";
  EXPECT_EQ(control(SIMULATOR_ACCEPT_PENDING).windowsError, kWindowsErrorNone);
  EXPECT_THAT(signalled, SizeIs(2));
  EXPECT_NE(pending()[0].handle, pending()[1].handle);
  EXPECT_EQ(control(SIMULATOR_ACCEPT_PENDING).windowsError, kWindowsErrorNone);
  EXPECT_THAT(signalled, SizeIs(2)) << "accepted once";
}

TEST_F(ModelPending, RequestThatIsNeverAccepted_CompletesAtOnce) {
  accept(kSimulatorAcceptNever);
  EXPECT_EQ(begin(11), kWindowsErrorNone);
  EXPECT_THAT(signalled, IsEmpty());
  EXPECT_THAT(pending(), IsEmpty());
}

TEST_F(ModelPending, CallerWhoseMemoryCannotBeWritten_FailsTheRequest) {
  EXPECT_EQ(request(kController, REQUEST_PENDING_NARROW, narrow(0), 0, 11).windowsError,
            kWindowsErrorIoPending);
  eventsAreValid = false;
  EXPECT_EQ(begin(12), kWindowsErrorIoPending);
  EXPECT_THAT(completions, ElementsAre(tCompletion{11, kWindowsErrorNoAccess},
                                       tCompletion{12, kWindowsErrorInvalidHandle}));
  EXPECT_THAT(pending(), IsEmpty());
}

TEST_F(ModelPending, CompletedFromTheMachinesSide_HasThatError) {
  begin(11);
  begin(12);
  const uint64_t second = receivedHandle();
  EXPECT_EQ(complete(second, 121), kWindowsErrorNone);
  EXPECT_EQ(complete(second, 121), kWindowsErrorNotFound);
  accept(kSimulatorAcceptLater);
  begin(13);
  begin(14);
  EXPECT_EQ(complete(0, 21), kWindowsErrorNone);
  EXPECT_THAT(completions,
              ElementsAre(tCompletion{12, 121}, tCompletion{13, 21}, tCompletion{14, 21}));
  EXPECT_THAT(pending(), SizeIs(1));
}

TEST_F(ModelPending, ClosedFile_HasNothingPending) {
  begin(11, 1);
  begin(12, 2);
  begin(13, 1);
  cleanUp(1);
  cleanUp(1);
  EXPECT_THAT(completions, ElementsAre(tCompletion{11, kWindowsErrorOperationAborted},
                                       tCompletion{13, kWindowsErrorOperationAborted}));
  EXPECT_THAT(pending(), SizeIs(1));
}

TEST_F(ModelPending, CancelledRequest_IsRemoved) {
  begin(11);
  EXPECT_TRUE(cancel(11));
  EXPECT_FALSE(cancel(11));
  EXPECT_THAT(completions, IsEmpty()) << "its host completes it";
  EXPECT_THAT(pending(), IsEmpty());
  EXPECT_EQ(log().back().event, static_cast<uint32_t>(kSimulatorEventCompleted));
  EXPECT_EQ(log().back().windowsError, kWindowsErrorOperationAborted);
}

TEST_F(ModelPending, Reset_CompletesEveryRequestAndRestoresImmediateAcceptance) {
  accept(kSimulatorAcceptLater);
  begin(11);
  EXPECT_EQ(control(SIMULATOR_RESET).windowsError, kWindowsErrorNone);
  EXPECT_THAT(completions, ElementsAre(tCompletion{11, kWindowsErrorOperationAborted}));
  begin(12);
  EXPECT_THAT(signalled, SizeIs(1));
}

TEST_F(ModelPending, Log_ShowsTheEventsOfARequest) {
  begin(11);
  end(receivedHandle());
  const std::vector<tSimulatorLogEntry> entries = log();
  ASSERT_THAT(entries, SizeIs(4));
  EXPECT_EQ(entries[0].event, static_cast<uint32_t>(kSimulatorEventRequest));
  EXPECT_EQ(entries[0].windowsError, kWindowsErrorIoPending);
  EXPECT_EQ(entries[1].event, static_cast<uint32_t>(kSimulatorEventAccepted));
  EXPECT_EQ(entries[1].requestCode, uint32_t{REQUEST_PENDING_NARROW});
  EXPECT_EQ(entries[2].event, static_cast<uint32_t>(kSimulatorEventRequest));
  EXPECT_EQ(entries[2].requestCode, uint32_t{REQUEST_END_PENDING});
  EXPECT_EQ(entries[3].event, static_cast<uint32_t>(kSimulatorEventCompleted));
  for (const size_t withHandle : {size_t{1}, size_t{3}}) {
    EXPECT_EQ(entries[withHandle].outputSize, 8u);
    EXPECT_EQ(std::memcmp(entries[withHandle].output, memory.data() + kHandleAddress, 8), 0);
  }
}

TEST_F(ModelPending, InvalidControlRequests_AreRejected) {
  EXPECT_EQ(control(SIMULATOR_SET_ACCEPTANCE, uint32_t{3}).windowsError,
            kWindowsErrorInvalidParameter);
  EXPECT_EQ(control(SIMULATOR_SET_ACCEPTANCE).windowsError, kWindowsErrorInvalidParameter);
  EXPECT_EQ(control(SIMULATOR_ACCEPT_PENDING, uint32_t{0}).windowsError,
            kWindowsErrorInvalidParameter);
  EXPECT_EQ(control(SIMULATOR_READ_PENDING, uint32_t{0}).windowsError,
            kWindowsErrorInvalidParameter);
  EXPECT_EQ(complete(1, kWindowsErrorIoPending), kWindowsErrorInvalidParameter);
  EXPECT_EQ(complete(1, 65536), kWindowsErrorInvalidParameter);
}

TEST_F(ModelPending, ScriptThatLeavesARequestPending_IsRejected) {
  tSimulatorScript script{};
  script.interfaceKind = kController;
  script.action = kSimulatorActionFail;
  script.windowsError = kWindowsErrorIoPending;
  EXPECT_EQ(control(SIMULATOR_ADD_SCRIPT, script).windowsError, kWindowsErrorInvalidParameter);
}

TEST_F(ModelPending, ScriptedStatusOnARequestWithoutReply_WritesNothing) {
  tSimulatorScript script{};
  script.interfaceKind = kController;
  script.action = kSimulatorActionAddCode;
  script.driverStatus = -1;
  ASSERT_EQ(control(SIMULATOR_ADD_SCRIPT, script).windowsError, kWindowsErrorNone);
  accept(kSimulatorAcceptNever);
  EXPECT_EQ(begin(11), kWindowsErrorNone);
}

}  // namespace
}  // namespace nTests
