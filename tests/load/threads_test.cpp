// Eight threads that call all functions, with random failures of Windows calls and a misbehaving
// driver. QUENRA_LOAD_SEED repeats the seed of a run.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <random>
#include <thread>

#include "quenra.h"
#include "tests/builders/firmwareimagebuilder.h"
#include "tests/builders/ttemporaryfolder.h"
#include "tests/fakewindows/fakewindowstest.h"
#include "tests/load/drivercontrol.h"
#include "tests/load/mixedcaller.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::tCall;
using nSimulator::tSimulatedMachine;
using std::chrono::seconds;
using tClock = std::chrono::steady_clock;

constexpr size_t kThreads = 8;
constexpr uint32_t kOperationsPerRound = 25;
constexpr auto kDuration = seconds(3);
constexpr auto kStuckTimeout = seconds(60);
constexpr const char* kDriverStoreTool = "C:\\Windows\\Sysnative\\pnputil.exe";

uint64_t chooseSeed() {
  const char* const given = std::getenv("QUENRA_LOAD_SEED");
  return given != nullptr ? std::strtoull(given, nullptr, 0) : std::random_device()();
}

// ---- Windows calls that fail ----

// A call and an error with which it may fail. Calls that release a resource are not listed: on
// Windows they do not fail, and a planned failure would leak the resource.
struct tFailing {
  tCall call;
  uint32_t error;
};
constexpr tFailing kFailing[] = {
    {tCall::setupDiGetClassDevs, ERROR_NOT_ENOUGH_MEMORY},
    {tCall::setupDiEnumDeviceInterfaces, ERROR_INVALID_PARAMETER},
    {tCall::setupDiGetDeviceInterfaceDetail, ERROR_GEN_FAILURE},
    {tCall::createFile, ERROR_ACCESS_DENIED},
    {tCall::createEvent, ERROR_NOT_ENOUGH_MEMORY},
    {tCall::deviceIoControl, ERROR_GEN_FAILURE},
    {tCall::deviceIoControl, ERROR_SEM_TIMEOUT},
    {tCall::getOverlappedResult, ERROR_INVALID_HANDLE},
    {tCall::cancelIoEx, ERROR_NOT_FOUND},
    {tCall::waitForSingleObject, ERROR_INVALID_HANDLE},
    {tCall::waitForMultipleObjects, ERROR_NOT_ENOUGH_MEMORY},
    {tCall::beginThread, ERROR_NO_SYSTEM_RESOURCES},
    {tCall::getModuleHandleEx, ERROR_MOD_NOT_FOUND},
    {tCall::getThreadPriority, ERROR_ACCESS_DENIED},
    {tCall::createIoCompletionPort, ERROR_NO_SYSTEM_RESOURCES},
    {tCall::getQueuedCompletionStatus, ERROR_INVALID_HANDLE},
    {tCall::postQueuedCompletionStatus, ERROR_NO_SYSTEM_RESOURCES},
    {tCall::addVectoredExceptionHandler, ERROR_NOT_ENOUGH_MEMORY},
    {tCall::getSystemFirmwareTable, ERROR_INVALID_FUNCTION},
    {tCall::coInitializeEx, 0x8007000E},
    {tCall::coCreateInstance, 0x80040154},
    {tCall::coSetProxyBlanket, 0x80004002},
    {tCall::connectServer, 0x8004100E},
    {tCall::execQuery, 0x80041017},
    {tCall::next, 0x80041001},
    {tCall::get, 0x80041002},
    {tCall::getFileAttributes, ERROR_PATH_NOT_FOUND},
    {tCall::createProcess, ERROR_BAD_EXE_FORMAT},
};
constexpr uint32_t kCallsPerFault = 40;

// Requests on the control interface come from the test.
bool isFromTest(tCall call, const std::string& argument) {
  constexpr uint32_t kControlDevice = 0x80A0;
  return call == tCall::deviceIoControl && std::stoul(argument) >> 16 == kControlDevice;
}

std::optional<uint32_t> decide(tRandom& random, tCall call, const std::string& argument) {
  if (!random.oneIn(kCallsPerFault) || isFromTest(call, argument)) {
    return std::nullopt;
  }
  std::optional<uint32_t> error;
  for (const tFailing& failing : kFailing) {
    if (failing.call == call && (!error || random.oneIn(2))) {
      error = failing.error;
    }
  }
  return error;
}

// ---- The threads ----

struct tThread {
  tProgress progress;
  tRouteTally routes{};
  tCallTally calls{};
  std::string failure;
};

class ThreadsUnderLoad : public nFakeWindows::FakeWindowsTest {
 protected:
  void SetUp() override {
    FakeWindowsTest::SetUp();
    std::printf("QUENRA_LOAD_SEED=%llu\n", static_cast<unsigned long long>(seed));
    nFakeWindows::programs().install(kDriverStoreTool);
    setenv("TMPDIR", temporary.path().c_str(), 1);
    for (size_t i = 0; i < kThreads; ++i) {
      watchdog.watch("thread " + std::to_string(i), threads[i].progress);
    }
  }
  void TearDown() override {
    unsetenv("TMPDIR");
    FakeWindowsTest::TearDown();
  }

  void runThread(tThread& own, uint64_t ownSeed, tSimulatedMachine& ownMachine,
                 tFaults faults) const {
    tRandom ownRandom(ownSeed);
    tMixedCaller caller({{devicePath, &ownRandom, &own.progress, &own.routes, &ownMachine, faults},
                         &own.calls,
                         &images,
                         true});
    try {
      for (uint32_t turn = 0; turn < kOperationsPerRound; ++turn) {
        caller.performRandomOperation();
      }
    } catch (const std::exception& violation) {
      own.failure = std::string(nameOf(own.progress.step())) + ": " + violation.what();
    }
    own.progress.enter(tStep::ended);
  }

  // Runs all threads and checks that they leave nothing open.
  void runRound(tFaults faults) {
    std::array<tSimulatedMachine, kThreads> machines;
    std::optional<tFaultInjector> injector;
    if (faults == tFaults::anywhere) {
      injector.emplace(random.next());
      faultPlan().decide([this](tCall call, const std::string& argument) {
        return decide(faultRandom, call, argument);
      });
    }
    std::vector<std::thread> running;
    for (size_t i = 0; i < kThreads; ++i) {
      running.emplace_back([this, i, faults, &machine = machines[i], threadSeed = random.next()] {
        runThread(threads[i], threadSeed, machine, faults);
      });
    }
    waitForThreads(running);
    injector.reset();
    for (const tThread& thread : threads) {
      EXPECT_EQ(thread.failure, "");
    }
    faultPlan().reset();
    nFakeWindows::objects().waitForThreads();
    EXPECT_EQ(nFakeWindows::objects().open().size(), kThreads) << "more than the machines' files";
    EXPECT_EQ(driverLeaks(machines[0]), "");
  }

  // Reports a stuck thread and aborts.
  void waitForThreads(std::vector<std::thread>& running) {
    const auto haveThreadsEnded = [this] {
      return std::all_of(threads.begin(), threads.end(), [](const tThread& thread) {
        return thread.progress.step() == tStep::ended;
      });
    };
    while (!haveThreadsEnded()) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
      if (watchdog.hasStuckThread()) {
        std::fprintf(stderr, "a thread is stuck\n%s", watchdog.report().c_str());
        std::abort();
      }
    }
    for (std::thread& thread : running) {
      thread.join();
    }
  }

  uint64_t sumOf(std::atomic<uint64_t> tCallTally::*count) const {
    uint64_t sum = 0;
    for (const tThread& thread : threads) {
      sum += thread.calls.*count;
    }
    return sum;
  }

  uint64_t seed = chooseSeed();
  tRandom random{seed};
  tRandom faultRandom{seed + 1};
  tTemporaryFolder temporary;
  std::string devicePath = routingDevicePath();
  std::vector<std::string> images{
      firmwareImage({tFirmwareSection("MARTEN").payload(firmwareBytes(300, 2)),
                     tFirmwareSection("BIOS").payload(firmwareBytes(100, 1))}),
      firmwareImage({tFirmwareSection("BIOS").payload(firmwareBytes(700, 5))}),
      firmwareImage({tFirmwareSection("MARTEN").payload(firmwareBytes(20, 6))}),
      firmwareImage({tFirmwareSection("SAFEMODE").payload(firmwareBytes(30, 3)),
                     tFirmwareSection::capsule("driver.inf").payload(firmwareBytes(50, 4))})};
  std::array<tThread, kThreads> threads;
  tWatchdog watchdog{kStuckTimeout};
};

TEST_F(ThreadsUnderLoad, WithoutFaults_FulfilTheContract) {
  for (const auto start = tClock::now(); tClock::now() - start < kDuration && !HasFailure();) {
    runRound(tFaults::none);
  }
  EXPECT_EQ(sumOf(&tCallTally::failures), 0u);
  EXPECT_GT(sumOf(&tCallTally::reads), 0u);
}

TEST_F(ThreadsUnderLoad, WithFaults_LeakNothingAndTheNextRoundIsClean) {
  for (const auto start = tClock::now(); tClock::now() - start < kDuration && !HasFailure();) {
    runRound(tFaults::anywhere);
    tSimulatedMachine().reset();
    runRound(tFaults::none);
  }
  EXPECT_GT(sumOf(&tCallTally::failures), 0u);
  std::printf("%llu reads, %llu updates, %llu failures\n",
              static_cast<unsigned long long>(sumOf(&tCallTally::reads)),
              static_cast<unsigned long long>(sumOf(&tCallTally::updates)),
              static_cast<unsigned long long>(sumOf(&tCallTally::failures)));
}

}  // namespace
}  // namespace nTests
