#include "zoarkra/troutingdevice.h"

#include <string>
#include <vector>

#include "protocol/pendingrequests.h"
#include "protocol/routingrequests.h"
#include "tests/component/zoarkra/routingdevicetest.h"
#include "zoapal/protons/status/zoerrstatus.h"
#include "zoarkra/arkroutingadaptorsession.h"

namespace nTests {
namespace {

class RoutingDevice : public RoutingDeviceTest {
 protected:
  // Notifies the device, if it is registered.
  bool isRegistered() {
    try {
      notify(machine());
      return true;
    } catch (const nSimulator::tControlError&) {
      return false;
    }
  }
};

TEST_F(RoutingDevice, Demotion_ReachesTheListener) {
  openAndStart();
  EXPECT_EQ(status.code, 0);
  notify(machine());
  notify(machine());
  EXPECT_TRUE(becomesTrue([&] { return listener.count == 2; }));
  EXPECT_NE(listener.last, nullptr);
}

TEST_F(RoutingDevice, OtherEvents_AreNotRegisteredFor) {
  openAndStart();
  EXPECT_THROW(notify(machine(), ~kDemoted), nSimulator::tControlError);
  EXPECT_EQ(listener.count, 0u);
}

TEST_F(RoutingDevice, StoppedDevice_DeliversNothing) {
  openAndStart();
  device->stopNotifications();
  EXPECT_THROW(notify(machine()), nSimulator::tControlError);
  EXPECT_EQ(listener.count, 0u) << "the end of the registration is not a demotion";
  device->stopNotifications();
}

TEST_F(RoutingDevice, DeviceThatWasNotStarted_CanBeStopped) {
  device->stopNotifications();
  device->open(path.c_str(), status);
  device->stopNotifications();
  EXPECT_EQ(status.code, 0);
}

TEST_F(RoutingDevice, StatusWithAnError_SendsNothing) {
  status.code = -1;
  openAndStart();
  EXPECT_TRUE(logged(kSimulatorEventOpen).empty());
  EXPECT_THROW(notify(machine()), nSimulator::tControlError);
}

TEST_F(RoutingDevice, MissingDevice_FailsWithNotFound) {
  path = R"(\\?\nothing)";
  openAndStart();
  EXPECT_EQ(status.code, QUENRA_STATUS_NOT_FOUND);
  EXPECT_STREQ(status.file, "tdeviceinterfaceproxy");
  EXPECT_EQ(status.line, 43u);
}

TEST_F(RoutingDevice, DestructionWhileTheListenerRuns_WaitsForIt) {
  openAndStart();
  listener.mayLeave = false;
  notify(machine());
  EXPECT_TRUE(becomesTrue([&] { return listener.isInside.load(); }));
  std::atomic<bool> destroyed = false;
  std::thread destroyer([&] {
    device.reset();
    destroyed = true;
  });
  // The destruction ends the registration before it waits.
  EXPECT_TRUE(becomesTrue([&] { return !isRegistered(); }));
  EXPECT_FALSE(destroyed);
  listener.mayLeave = true;
  destroyer.join();
  EXPECT_FALSE(listener.isInside);
}

TEST_F(RoutingDevice, DestructionWhileDemotionsArrive_DeliversNothingAfterwards) {
  for (int round = 0; round < 5; ++round) {
    listener.count = 0;
    device = std::make_unique<zoark::tRoutingDevice>();
    openAndStart();
    ASSERT_EQ(status.code, 0);
    std::atomic<bool> over = false;
    std::thread notifier([&over] {
      nSimulator::tSimulatedMachine sender;
      while (!over) {
        try {
          notify(sender);
        } catch (const nSimulator::tControlError&) {
          // No session is registered any more, or the driver holds too many notices back.
        }
      }
    });
    EXPECT_TRUE(becomesTrue([&] { return listener.count > 3; }));
    device.reset();
    const size_t delivered = listener.count;
    EXPECT_FALSE(isRegistered());
    EXPECT_EQ(listener.count, delivered);
    over = true;
    notifier.join();
  }
}

TEST_F(RoutingDevice, TwoDevices_BothReceiveADemotion) {
  openAndStart();
  zoark::tRoutingDevice other;
  tCountingListener otherListener;
  other.open(path.c_str(), status);
  other.startNotifications(otherListener, status);
  notify(machine());
  EXPECT_TRUE(becomesTrue([&] { return listener.count == 1 && otherListener.count == 1; }));
  EXPECT_NE(listener.last.load(), otherListener.last.load());
}

// When the last step of a creation fails, the session ends its registration and closes its file.
TEST_F(RoutingDevice, DeviceOfASessionThatFails_IsStoppedAndClosed) {
  tSimulatorScript refusal{};
  refusal.interfaceKind = kSimulatorInterfaceDevicePath;
  refusal.requestCode = REQUEST_GET_TOPOGRAPHY_NAME;
  refusal.times = 1;
  refusal.action = kSimulatorActionFail;
  refusal.windowsError = 87;
  machine().addScript(refusal);
  zoerr::tOwnedStatus own;
  try {
    const zoark::ARKRoutingAdaptorSession session(zoark::makeRoutingDevice(), path.c_str(),
                                                  {nullptr, nullptr, nullptr}, own);
    ADD_FAILURE() << "the session was created";
  } catch (const zoerr::ExceptionBase& exception) {
    EXPECT_EQ(exception.status().code, QUENRA_STATUS_INVALID_PARAMETER);
  }
  EXPECT_EQ(logged(kSimulatorEventOpen).size(), 1u);
  EXPECT_TRUE(becomesTrue([this] { return logged(kSimulatorEventClose).size() == 1; }));
  EXPECT_THROW(notify(machine()), nSimulator::tControlError);
}

#ifndef _WIN32
// ---- The order of a release. The fake Windows records every call. ----

using nFakeWindows::faultPlan;
using nFakeWindows::tCall;
using nFakeWindows::tCallRecord;
using tSteps = std::vector<std::string>;

// The step of a release that a call carries out; empty for any other call.
std::string stepOf(const tCallRecord& record) {
  if (record.call == tCall::deviceIoControl &&
      record.argument == std::to_string(REQUEST_UNREGISTER_NOTIFICATION)) {
    return "unregister";
  }
  if (record.call == tCall::postQueuedCompletionStatus) {
    return "wake the reader";
  }
  if (record.call == tCall::waitForSingleObject) {
    return "join the reader";
  }
  return record.call == tCall::closeHandle ? "close the " + record.argument : "";
}

tSteps steps() {
  tSteps found;
  for (const tCallRecord& record : faultPlan().calls()) {
    if (const std::string step = stepOf(record); !step.empty()) {
      found.push_back(step);
    }
  }
  return found;
}

class SessionEnd : public RoutingDeviceTest {
 protected:
  void SetUp() override {
    RoutingDeviceTest::SetUp();
    openAndStart();
    ASSERT_EQ(status.code, 0);
    faultPlan().reset();
  }
};

const tSteps kStop{"unregister", "wake the reader", "join the reader", "close the thread",
                   "close the completion port"};
const tSteps kClose{"close the file", "close the event"};

tSteps joined(const tSteps& first, const tSteps& second) {
  tSteps both = first;
  both.insert(both.end(), second.begin(), second.end());
  return both;
}

TEST_F(SessionEnd, DestroyedDevice_UnregistersThenEndsTheReaderThenClosesTheFile) {
  device.reset();
  EXPECT_EQ(steps(), joined(kStop, kClose));
}

TEST_F(SessionEnd, StoppedNotifications_LeaveTheFileOpenUntilTheDeviceEnds) {
  device->stopNotifications();
  EXPECT_EQ(steps(), kStop);
  faultPlan().reset();
  device.reset();
  EXPECT_EQ(steps(), kClose);
}

TEST_F(SessionEnd, RefusedUnregistration_EndsTheReaderBeforeTheFileAsWell) {
  faultPlan().failCall(tCall::deviceIoControl, 1, ERROR_ACCESS_DENIED);
  device.reset();
  EXPECT_EQ(steps(), joined(kStop, kClose));
}

TEST_F(SessionEnd, DestroyedDuringACallback_ClosesNothingBeforeTheCallbackReturns) {
  listener.mayLeave = false;
  notify(machine());
  ASSERT_TRUE(becomesTrue([this] { return listener.isInside.load(); }));
  faultPlan().reset();
  // The reader is joined while its callback runs: no handle is closed by then.
  faultPlan().beforeCall(tCall::waitForSingleObject, 1, [this] {
    EXPECT_TRUE(listener.isInside);
    EXPECT_EQ(faultPlan().callCount(tCall::closeHandle), 0u);
    listener.mayLeave = true;
  });
  device.reset();
  EXPECT_FALSE(listener.isInside);
  EXPECT_EQ(steps(), joined(kStop, kClose));
}
#endif

}  // namespace
}  // namespace nTests
