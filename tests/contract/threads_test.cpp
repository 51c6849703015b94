#include <atomic>
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

TEST_F(Threads, OpeningReadingAndClosing_SeeOneWholeControllerEach) {
  machine().setAttributeText(kSimulatorInterfaceMarten, 0x10000400, "M-9.8");
  machine().setAttributeU32(kSimulatorInterfaceController, 0x20044C00, 77);
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

}  // namespace
}  // namespace nTests
