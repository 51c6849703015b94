// Calls on several threads.
#include <atomic>
#include <chrono>
#include <future>
#include <thread>
#include <vector>

#include "tests/contract/contracttest.h"

namespace nTests {
namespace {

class Threads : public ContractTest {
 protected:
  static constexpr int kThreads = 8;

  template <class Work>
  static void runOnAll(Work work) {
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
      threads.emplace_back(work, i);
    }
    for (std::thread& thread : threads) {
      thread.join();
    }
  }
};

TEST_F(Threads, OpeningReadingAndClosing_SeeOneCompleteControllerEach) {
  machine().setAttributeText(kSimulatorInterfaceMarten, QUENRA_ATTRIBUTE_FIRMWARE_VERSION, "M-9.8");
  machine().setAttributeU32(kSimulatorInterfaceController, QUENRA_ATTRIBUTE_DRIVER_SETTING_1, 77);
  std::atomic<int> wrong = 0;
  runOnAll([&wrong](int) {
    for (int round = 0; round < 20; ++round) {
      const tOpenController controller;
      wrong += controller.code() != 0;
      wrong += readText(QUENRA_ATTRIBUTE_PRODUCT_NAME) != text("BW-8135");
      wrong += readText(QUENRA_ATTRIBUTE_BUS_LOCATION) != text("07:12");
      wrong += readText(QUENRA_ATTRIBUTE_FIRMWARE_VERSION) != tTextRead{0, "M-9.8", 6};
      wrong += readUnsigned(QUENRA_ATTRIBUTE_MEMORY_SIZE + 1) != value(0x2002);
      wrong += readUnsigned(QUENRA_ATTRIBUTE_DRIVER_SETTING_1) != value(77);
    }
  });
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT).code, QUENRA_STATUS_INVALID_HANDLE);
}

TEST_F(Threads, OpeningAndClosingBalanced_NeverHaveTwoSessionsAlive) {
  machine().clearLog();
  runOnAll([](int) {
    for (int round = 0; round < 5; ++round) {
      const tOpenController controller;
    }
  });
  int alive = 0;
  for (const tSimulatorLogEntry& entry : machine().log()) {
    if (entry.interfaceKind == kSimulatorInterfaceController) {
      alive += entry.event == kSimulatorEventOpen;
      alive -= entry.event == kSimulatorEventClose;
      ASSERT_LE(alive, 1);
    }
  }
  EXPECT_EQ(alive, 0);
}

TEST_F(Threads, ReadingOneSession_GetTheirOwnAnswers) {
  for (uint32_t i = 0; i < kThreads; ++i) {
    machine().setAttributeU32(kSimulatorInterfaceMarten, 0x20200000 + 256 * i, 1000 + i);
  }
  open();
  std::atomic<int> wrong = 0;
  runOnAll([&wrong](int thread) {
    const auto i = static_cast<uint32_t>(thread);
    for (int round = 0; round < 50; ++round) {
      wrong += readUnsigned(0x20200000 + 256 * i) != value(1000 + i);
    }
  });
  EXPECT_EQ(wrong, 0);
}

TEST_F(Threads, ReadingTheDevicePath_NeedNoOpenController) {
  std::atomic<int> wrong = 0;
  runOnAll([&wrong](int) {
    for (int round = 0; round < 20; ++round) {
      wrong += readText(QUENRA_ATTRIBUTE_DEVICE_PATH, 256).code != 0;
    }
  });
  EXPECT_EQ(wrong, 0);
}

#ifndef _WIN32

// ---- Calls that overlap a request that the driver holds; the fake Windows can hold it ----

using nFakeWindows::faultPlan;
using nFakeWindows::tCall;

// Far longer than any call takes: only a call that waits for the held request takes as long.
constexpr std::chrono::seconds kTimeout(30);

// Holds the next request of the library inside DeviceIoControl until it is released or the object
// ends. Later requests are not held.
class tHeldRequest {
 public:
  tHeldRequest() {
    faultPlan().reset();
    faultPlan().beforeCall(tCall::deviceIoControl, 1, [this] {
      isHeld_.set_value();
      isReleased_.get_future().wait();
    });
  }
  tHeldRequest(const tHeldRequest&) = delete;
  tHeldRequest& operator=(const tHeldRequest&) = delete;

  void waitUntilHeld() { isHeld_.get_future().wait(); }
  void release() { isReleased_.set_value(); }

 private:
  std::promise<void> isHeld_;
  std::promise<void> isReleased_;
};

// While `caller` has a request in the driver, `others` run on threads of their own and return.
template <class Caller, class Others>
void runDuringARequestOf(Caller caller, Others others) {
  constexpr int kThreads = 4;
  tHeldRequest request;
  std::thread calling(caller);
  request.waitUntilHeld();
  std::vector<std::future<void>> running;
  for (int i = 0; i < kThreads; ++i) {
    running.push_back(std::async(std::launch::async, others));
  }
  const auto deadline = std::chrono::steady_clock::now() + kTimeout;
  for (std::future<void>& other : running) {
    EXPECT_EQ(other.wait_until(deadline), std::future_status::ready) << "waits for the request";
  }
  request.release();
  calling.join();
}

class SessionLock : public ContractTest {};

TEST_F(SessionLock, ReadInsideTheDriver_BlocksNeitherOpensNorReadsNorCloses) {
  machine().setAttributeU32(kSimulatorInterfaceController, QUENRA_ATTRIBUTE_DRIVER_SETTING_1, 77);
  open();
  runDuringARequestOf([] { EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_DRIVER_SETTING_1), value(77)); },
                      [] {
                        const tOpenController controller;
                        EXPECT_EQ(controller.code(), 0);
                        EXPECT_EQ(readText(QUENRA_ATTRIBUTE_PRODUCT_NAME), text("BW-8135"));
                        EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT), value(2));
                        EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_DRIVER_SETTING_1), value(77));
                        EXPECT_EQ(QUENRA_performSelfTest(controller.handle()), 0);
                      });
  EXPECT_EQ(QUENRA_performSelfTest(QUENRA_HANDLE), 0) << "the first open is left";
}

TEST_F(SessionLock, WriteInsideTheDriver_BlocksNeitherOpensNorReadsNorCloses) {
  machine().setAttributeU32(kSimulatorInterfaceController, QUENRA_ATTRIBUTE_DRIVER_SETTING_1, 77);
  machine().allowWrites(kSimulatorInterfaceController, QUENRA_ATTRIBUTE_DRIVER_SETTING_1);
  open();
  runDuringARequestOf(
      [] {
        EXPECT_EQ(QUENRA_setAttributeU32(QUENRA_HANDLE, QUENRA_ATTRIBUTE_DRIVER_SETTING_1, 78), 0);
      },
      [] {
        const tOpenController controller;
        EXPECT_EQ(controller.code(), 0);
        EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_DRIVER_SETTING_1), value(77));
      });
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_DRIVER_SETTING_1), value(78));
}

// An open holds the lock while it fetches the table from the driver.
TEST_F(SessionLock, BadHandleDuringAnOpen_IsRejectedByEveryExport) {
  runDuringARequestOf(
      [] {
        uint64_t handle = 0;
        EXPECT_EQ(QUENRA_openController(&handle), 0);
      },
      [] {
        for (const uint64_t handle : kWrongHandles) {
          for (const tCallOnHandle& function : kCallsOnHandle) {
            EXPECT_EQ(function.call(handle), QUENRA_STATUS_INVALID_HANDLE) << function.name;
          }
          QUENRA_closeController(handle);
        }
      });
  EXPECT_EQ(QUENRA_performSelfTest(QUENRA_HANDLE), 0) << "no close with a bad handle counted";
}

TEST_F(SessionLock, DevicePathDuringAnOpen_IsRead) {
  runDuringARequestOf(
      [] {
        uint64_t handle = 0;
        EXPECT_EQ(QUENRA_openController(&handle), 0);
      },
      [] { EXPECT_EQ(readText(QUENRA_ATTRIBUTE_DEVICE_PATH, 256).code, 0); });
}

#endif

}  // namespace
}  // namespace nTests
