#include "zoarkra/troutingdevice.h"

#include "protocol/routingrequests.h"
#include "tests/component/zoarkra/routingdevicetest.h"
#include "zoapal/protons/status/exception.h"
#include "zoarkra/arkroutingadaptorsession.h"

namespace nTests {
namespace {

constexpr auto kWhile = std::chrono::milliseconds(20);

class RoutingDevice : public RoutingDeviceTest {};

TEST_F(RoutingDevice, Demotion_IsToldToTheListener) {
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

TEST_F(RoutingDevice, Stopped_TellsNothing) {
  openAndStart();
  device->stopNotifications();
  EXPECT_THROW(notify(machine()), nSimulator::tControlError);
  EXPECT_EQ(listener.count, 0u) << "the end of the registration is no demotion";
  device->stopNotifications();
}

TEST_F(RoutingDevice, NeverStarted_CanBeStopped) {
  device->stopNotifications();
  device->open(path.c_str(), status);
  device->stopNotifications();
  EXPECT_EQ(status.code, 0);
}

TEST_F(RoutingDevice, OnAStatusInError_DoesNothing) {
  status.code = -1;
  openAndStart();
  EXPECT_TRUE(logged(kSimulatorEventOpen).empty());
  EXPECT_THROW(notify(machine()), nSimulator::tControlError);
}

TEST_F(RoutingDevice, ThatIsNotThere_IsToldByItsOpening) {
  path = R"(\\?\nothing)";
  openAndStart();
  EXPECT_EQ(status.code, -52006);
  EXPECT_STREQ(status.file, "tdeviceinterfaceproxy");
  EXPECT_EQ(status.line, 43u);
}

TEST_F(RoutingDevice, DestroyedWhileItsListenerRuns_WaitsForIt) {
  openAndStart();
  listener.mayLeave = false;
  notify(machine());
  EXPECT_TRUE(becomesTrue([&] { return listener.isInside.load(); }));
  std::atomic<bool> destroyed = false;
  std::thread destroyer([&] {
    device.reset();
    destroyed = true;
  });
  std::this_thread::sleep_for(kWhile);
  EXPECT_FALSE(destroyed);
  listener.mayLeave = true;
  destroyer.join();
  EXPECT_FALSE(listener.isInside);
}

TEST_F(RoutingDevice, DestroyedWhileDemotionsArrive_TellsNothingAfterwards) {
  for (int round = 0; round < 5; ++round) {
    listener.count = 0;
    device = std::make_unique<zoark::tRoutingDevice>();
    openAndStart();
    ASSERT_EQ(status.code, 0);
    std::atomic<bool> over = false;
    std::thread teller([&over] {
      nSimulator::tSimulatedMachine telling;
      while (!over) {
        try {
          notify(telling);
        } catch (const nSimulator::tControlError&) {
          // Nobody is registered any more, or too much is held back.
        }
      }
    });
    EXPECT_TRUE(becomesTrue([&] { return listener.count > 3; }));
    device.reset();
    const size_t told = listener.count;
    std::this_thread::sleep_for(kWhile);
    EXPECT_EQ(listener.count, told);
    over = true;
    teller.join();
  }
}

TEST_F(RoutingDevice, TwoOfThem_AreBothTold) {
  openAndStart();
  zoark::tRoutingDevice other;
  tCountingListener otherListener;
  other.open(path.c_str(), status);
  other.startNotifications(otherListener, status);
  notify(machine());
  EXPECT_TRUE(becomesTrue([&] { return listener.count == 1 && otherListener.count == 1; }));
  EXPECT_NE(listener.last.load(), otherListener.last.load());
}

// A session of which the last step fails has told the driver to forget it and has closed its file.
TEST_F(RoutingDevice, OfASessionThatFails_IsStoppedAndClosed) {
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
    ADD_FAILURE() << "the session was made";
  } catch (const zoerr::ExceptionBase& exception) {
    EXPECT_EQ(exception.status().code, -52005);
  }
  EXPECT_EQ(logged(kSimulatorEventOpen).size(), 1u);
  EXPECT_TRUE(becomesTrue([this] { return logged(kSimulatorEventClose).size() == 1; }));
  EXPECT_THROW(notify(machine()), nSimulator::tControlError);
}

}  // namespace
}  // namespace nTests
