// Shared by the tests of the system's routing device, native and on Windows.
#ifndef TESTS_COMPONENT_ZOARKRA_ROUTINGDEVICETEST_H
#define TESTS_COMPONENT_ZOARKRA_ROUTINGDEVICETEST_H

#include <atomic>
#include <mutex>
#include <string>
#include <vector>

#include "protocol/pendingrequests.h"
#include "tests/component/protons/driver/drivertest.h"
#include "zoarkra/troutingdevice.h"

namespace nTests {

inline constexpr uint32_t kDemoted = 0x80000000;

// Counts demotions. The test can hold it inside a call.
class tCountingListener final : public zoark::iDemotionListener {
 public:
  void routeDemoted(void* notification) noexcept override {
    last = notification;
    ++count;
    isInside = true;
    while (!mayLeave) {
      std::this_thread::yield();
    }
    isInside = false;
  }

  std::atomic<size_t> count = 0;
  std::atomic<void*> last = nullptr;
  std::atomic<bool> isInside = false;
  std::atomic<bool> mayLeave = true;
};

class RoutingDeviceTest : public DriverTest {
 protected:
  void SetUp() override {
    DriverTest::SetUp();
    tDeviceInterfaceIterator iterator(kDevicePathInterfaceClass, status);
    path = iterator.getDevicePath(status).text;
    ASSERT_EQ(status.code, 0);
  }
  void TearDown() override {
    device.reset();
    DriverTest::TearDown();
  }

  void openAndStart() {
    device->open(path.c_str(), status);
    device->startNotifications(listener, status);
  }
  // Throws when no session is registered for one of the events.
  static void notify(nSimulator::tSimulatedMachine& notifier, uint32_t mask = kDemoted) {
    tSimulatorNotice notice{};
    notice.mask = mask;
    notifier.notify(notice);
  }

  std::string path;
  tCountingListener listener;
  std::unique_ptr<zoark::tRoutingDevice> device = std::make_unique<zoark::tRoutingDevice>();
};

}  // namespace nTests

#endif
