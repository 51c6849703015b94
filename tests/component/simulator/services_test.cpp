// The library's encryption test and driver-package step with the simulated machine's services.
#include <windows.h>
// objbase.h requires windows.h.
#include <objbase.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>
#include <vector>

#include "quenra_status.h"
#include "simulator/scenario/servicescenarios.h"
#include "source/user/preconditions/preconditions.h"
#include "source/user/update/driverpackage.h"
#include "tests/component/user/readingtest.h"

namespace nTests {
namespace {

// ---- The management service ----

using nSimulator::setEncryption;

struct tEncryptionResult {
  bool isEncrypted;
  int32_t code;
  uint32_t line;
  bool operator==(const tEncryptionResult&) const = default;
};
void PrintTo(const tEncryptionResult& result, std::ostream* out) {
  *out << (result.isEncrypted ? "encrypted" : "not encrypted") << ", code " << result.code
       << " at line " << result.line;
}

tEncryptionResult readEncryption() {
  zoerr::tOwnedStatus status;
  const bool isEncrypted = nQUENRA1400::IsSystemDriveEncrypted(status);
  return {isEncrypted, status.code, lineOf(status)};
}

// Runs the operation on a new thread, on which the test decides whether COM is initialised.
template <class Operation>
void onANewThread(Operation operation) {
  std::thread(operation).join();
}

constexpr tEncryptionResult kEncrypted = {true, 0, 0};
constexpr tEncryptionResult kNotEncrypted = {false, 0, 0};

class ManagementService : public testing::Test {
 protected:
  void SetUp() override { setEncryption({}); }
  void TearDown() override { setEncryption({}); }
};

TEST_F(ManagementService, Protection_IsThatOfTheScenario) {
  EXPECT_EQ(readEncryption(), kNotEncrypted);
  setEncryption({"on", ""});
  EXPECT_EQ(readEncryption(), kEncrypted);
  setEncryption({"unknown", ""});
  EXPECT_EQ(readEncryption(), kNotEncrypted);
  setEncryption({"no-volume", ""});
  EXPECT_EQ(readEncryption(), kNotEncrypted);
}

TEST_F(ManagementService, StepThatFails_IsReported) {
  setEncryption({"on", "locator"});
  EXPECT_EQ(readEncryption(), (tEncryptionResult{false, QUENRA_STATUS_UPDATE_ENVIRONMENT, 2863}));
  setEncryption({"on", "connect"});
  EXPECT_EQ(readEncryption(), (tEncryptionResult{false, QUENRA_STATUS_UPDATE_ENVIRONMENT, 2879}));
  setEncryption({"on", "query"});
  EXPECT_EQ(readEncryption(), (tEncryptionResult{false, QUENRA_STATUS_UPDATE_ENVIRONMENT, 2912}));
  setEncryption({"on", "result"});
  EXPECT_EQ(readEncryption(), kNotEncrypted);
  setEncryption({"on", "property"});
  EXPECT_EQ(readEncryption(), kNotEncrypted);
}

TEST_F(ManagementService, ThreadInAnApartment_FailsAndKeepsIt) {
  onANewThread([] {
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    EXPECT_EQ(readEncryption(), (tEncryptionResult{false, QUENRA_STATUS_UPDATE_ENVIRONMENT, 2831}));
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_FALSE)
        << "COM is still initialised";
    CoUninitialize();
    CoUninitialize();
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK)
        << "COM is no longer initialised";
    CoUninitialize();
  });
}

TEST_F(ManagementService, ThreadInTheSameModel_KeepsIt) {
  setEncryption({"on", ""});
  onANewThread([] {
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    EXPECT_EQ(readEncryption(), kEncrypted);
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_FALSE) << "COM is still initialised";
    CoUninitialize();
    CoUninitialize();
  });
}

TEST_F(ManagementService, ThreadWithoutCom_HasNoneAfterwards) {
  setEncryption({"on", ""});
  onANewThread([] {
    EXPECT_EQ(readEncryption(), kEncrypted);
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    CoUninitialize();
  });
}

TEST_F(ManagementService, AfterItsLastUse_StaysLoaded) {
  // Reloading the service for each use would consume memory each time.
  onANewThread([] { EXPECT_EQ(readEncryption(), kNotEncrypted); });
  EXPECT_NE(GetModuleHandleA("quenrasimmanagement.dll"), nullptr);
}

TEST_F(ManagementService, ConcurrentThreads_AreAllAnswered) {
  setEncryption({"on", ""});
  std::atomic<int> encrypted = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&encrypted] {
      for (int time = 0; time < 10; ++time) {
        encrypted += readEncryption() == kEncrypted ? 1 : 0;
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(encrypted, 40);
}

// ---- The driver-store tool ----

using nSimulator::driverStoreRuns;

constexpr const char* kTool = "C:\\Windows\\Sysnative\\pnputil.exe";
constexpr const char* kMovedTool = "C:\\Windows\\Sysnative\\moved.exe";

tFailure install(const std::string& path) {
  zoerr::tOwnedStatus status;
  nQUENRA1400::installDriverPackage(path, status);
  return {status.code, lineOf(status)};
}
constexpr tFailure kSuccess = {0, 0};

DWORD handleCount() {
  DWORD count = 0;
  GetProcessHandleCount(GetCurrentProcess(), &count);
  return count;
}

class DriverStore : public testing::Test {
 protected:
  void SetUp() override {
    nSimulator::setDriverStoreBehaviour({});
    nSimulator::clearDriverStoreRuns();
    std::ofstream(package_, std::ios::binary) << "[Version]\r\n";
  }
  void TearDown() override {
    if (std::filesystem::exists(kMovedTool)) {
      std::filesystem::remove_all(kTool);
      std::filesystem::rename(kMovedTool, kTool);
    }
    std::filesystem::remove(package_);
    nSimulator::setDriverStoreBehaviour({});
    nSimulator::clearDriverStoreRuns();
  }

  static void moveToolAway() { std::filesystem::rename(kTool, kMovedTool); }

  const std::string package_ = (std::filesystem::temp_directory_path() / "a b.inf").string();
};

TEST_F(DriverStore, Package_ReachesTheToolWithThisCommandLine) {
  EXPECT_EQ(install(package_), kSuccess);
  const auto runs = driverStoreRuns();
  ASSERT_EQ(runs.size(), 1u);
  EXPECT_EQ(runs[0].commandLine, " /add-driver " + package_ + " /install");
  EXPECT_EQ(runs[0].file, package_);
  EXPECT_TRUE(runs[0].isReadable);
  EXPECT_EQ(runs[0].size, 11u);
  EXPECT_EQ(runs[0].sha256, "a03a00dc9daa79a0226061cdfcb53bc2db77190465f7ea2c84fe7a77509a9b55");
}

TEST_F(DriverStore, FailingTool_IsReportedAsSuccess) {
  nSimulator::setDriverStoreBehaviour({0, 5});
  EXPECT_EQ(install(package_), kSuccess);
  EXPECT_EQ(driverStoreRuns().size(), 1u);
}

TEST_F(DriverStore, AbsentPackage_IsPassedToTheTool) {
  EXPECT_EQ(install("C:\\nothing.inf"), kSuccess);
  ASSERT_EQ(driverStoreRuns().size(), 1u);
  EXPECT_FALSE(driverStoreRuns()[0].isReadable);
}

TEST_F(DriverStore, SlowTool_DelaysTheResult) {
  nSimulator::setDriverStoreBehaviour({1, 0});
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(install(package_), kSuccess);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(900));
}

TEST_F(DriverStore, Tools_LeaveNoHandleOpen) {
  EXPECT_EQ(install(package_), kSuccess);
  const DWORD before = handleCount();
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(install(package_), kSuccess);
  }
  EXPECT_EQ(handleCount(), before);
}

TEST_F(DriverStore, MissingTool_IsReported) {
  moveToolAway();
  EXPECT_EQ(install(package_), (tFailure{QUENRA_STATUS_UPDATE_ENVIRONMENT, 2331}));
}

TEST_F(DriverStore, FolderInPlaceOfTheTool_CountsAsMissing) {
  moveToolAway();
  std::filesystem::create_directory(kTool);
  EXPECT_EQ(install(package_), (tFailure{QUENRA_STATUS_UPDATE_ENVIRONMENT, 2331}));
}

TEST_F(DriverStore, FileThatIsNotAProgram_CannotBeStarted) {
  moveToolAway();
  std::ofstream(kTool) << "not a program";
  EXPECT_EQ(install(package_), (tFailure{QUENRA_STATUS_INVALID_IMAGE, 2359}));
}

}  // namespace
}  // namespace nTests
