#include "zoarkra/troutingdevice.h"

#include "protocol/routingrequests.h"
#include "tests/component/zoarkra/routingdevicetest.h"
#include "zoapal/protons/status/zoerrstatus.h"
#include "zoarkra/arkroutingadaptorsession.h"

namespace nTests {
namespace {

// Long enough for a late call to be observed.
constexpr auto kSettleTime = std::chrono::milliseconds(20);

class RoutingDevice : public RoutingDeviceTest {};

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
  EXPECT_EQ(status.code, -52006);
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
  std::this_thread::sleep_for(kSettleTime);
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
    std::this_thread::sleep_for(kSettleTime);
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
    EXPECT_EQ(exception.status().code, -52005);
  }
  EXPECT_EQ(logged(kSimulatorEventOpen).size(), 1u);
  EXPECT_TRUE(becomesTrue([this] { return logged(kSimulatorEventClose).size() == 1; }));
  EXPECT_THROW(notify(machine()), nSimulator::tControlError);
}

}  // namespace
}  // namespace nTests
