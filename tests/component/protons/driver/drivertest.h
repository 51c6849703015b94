// Fixtures of the tests of the channel to the driver: an open controller interface and its
// machine.
#ifndef TESTS_COMPONENT_PROTONS_DRIVER_DRIVERTEST_H
#define TESTS_COMPONENT_PROTONS_DRIVER_DRIVERTEST_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <thread>

#include "protocol/interfaces.h"
#include "quenra_status.h"
#include "simulator/control/tsimulatedmachine.h"
#include "zoapal/protons/driver/windowsu/tdeviceinterfaceproxy.h"
#include "zoapal/protons/enumeration/windows/tdeviceinterfaceiterator.h"

#ifndef _WIN32
#include "tests/fakewindows/fakewindowstest.h"
#endif

namespace nTests {

#ifdef _WIN32
using tDriverTestBase = testing::Test;
#else
using tDriverTestBase = nFakeWindows::FakeWindowsTest;
#endif

using nQUENRA1400::nZOAPAL000::tDeviceInterfaceIterator;
using nQUENRA1400::nZOAPAL000::tDeviceInterfaceProxy;
using nQUENRA1400::nZOAPAL000::tPendingRequest;
using nZOAPALS100::tStatus;

inline void openController(tDeviceInterfaceProxy& proxy, tStatus& status) {
  tDeviceInterfaceIterator iterator(kControllerInterfaceClass, status);
  iterator.openCurrent(proxy, status);
}

// A thread of a test, also of one in virtual time.
class tTestThread {
 public:
#ifdef _WIN32
  explicit tTestThread(std::function<void()> routine) : thread_(std::move(routine)) {}
  void join() {
    thread_.join();
  }

 private:
  std::thread thread_;
#else
  explicit tTestThread(std::function<void()> routine)
      : thread_(nFakeWindows::scheduler().start("test", std::move(routine))) {}
  void join() const {
    nFakeWindows::scheduler().join(thread_);
  }

 private:
  unsigned thread_;
#endif
};

// Lets the other threads run until they wait; without virtual time, for 20 ms.
inline void letOthersRun() {
#ifdef _WIN32
  Sleep(20);
#else
  nFakeWindows::scheduler().settle();
#endif
}

// Waits up to 20 s for another thread or process to make the condition true.
inline bool becomesTrue(const std::function<bool()>& condition) {
#ifndef _WIN32
  if (nFakeWindows::tScheduler::isActive()) {
    letOthersRun();
    return condition();
  }
#endif
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) {
      return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

// An open proxy and the machine it is connected to.
class DriverTest : public tDriverTestBase {
 protected:
  void SetUp() override {
    tDriverTestBase::SetUp();
    machine_ = std::make_unique<nSimulator::tSimulatedMachine>();
    machine_->reset();
    openController(proxy, status);
    ASSERT_EQ(status.code, QUENRA_STATUS_SUCCESS);
    machine_->clearLog();
  }
  void TearDown() override {
    proxy.close();
    machine_->reset();
    machine_.reset();
    tDriverTestBase::TearDown();
  }

  // On the fake Windows; a wait for something that must not happen takes no time then.
  void useVirtualTime() {
#ifndef _WIN32
    tDriverTestBase::useVirtualTime();
#endif
  }

  nSimulator::tSimulatedMachine& machine() {
    return *machine_;
  }
  void script(uint32_t windowsError, uint32_t requestCode) {
    tSimulatorScript failing{};
    failing.interfaceKind = kSimulatorInterfaceController;
    failing.requestCode = requestCode;
    failing.times = 1;
    failing.action = kSimulatorActionFail;
    failing.windowsError = windowsError;
    machine_->addScript(failing);
  }
  std::vector<tSimulatorLogEntry> logged(tSimulatorEvent event) {
    std::vector<tSimulatorLogEntry> entries = machine_->log();
    std::erase_if(entries, [event](const tSimulatorLogEntry& entry) {
      return entry.event != static_cast<uint32_t>(event);
    });
    return entries;
  }
  void expectFailure(int32_t code, uint32_t line) {
    EXPECT_EQ(status.code, code);
    EXPECT_EQ(status.line, line);
    EXPECT_STREQ(status.file, "tdeviceinterfaceproxy");
    EXPECT_STREQ(status.component, "quenra");
  }

  tStatus status;
  tDeviceInterfaceProxy proxy;

 private:
  std::unique_ptr<nSimulator::tSimulatedMachine> machine_;
};

class PendingRequest : public DriverTest {
 protected:
  // The number of requests pending on this process's files.
  size_t pendingCount() { return machine().pending().size(); }

  tPendingRequest request;
};

}  // namespace nTests

#endif
