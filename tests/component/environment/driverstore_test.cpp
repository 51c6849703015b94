// The installation of a driver package with real processes and the machine's driver-store tool.
#include <windows.h>

#include <chrono>
#include <filesystem>
#include <fstream>

#include "simulator/scenario/servicescenarios.h"
#include "source/user/update/driverpackage.h"
#include "tests/component/user/readingtest.h"

namespace nTests {
namespace {

using nSimulator::driverStoreRuns;

constexpr const char* kTool = "C:\\Windows\\Sysnative\\pnputil.exe";
constexpr const char* kAside = "C:\\Windows\\Sysnative\\aside.exe";

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
    if (std::filesystem::exists(kAside)) {
      std::filesystem::remove_all(kTool);
      std::filesystem::rename(kAside, kTool);
    }
    std::filesystem::remove(package_);
    nSimulator::setDriverStoreBehaviour({});
    nSimulator::clearDriverStoreRuns();
  }

  static void putToolAside() { std::filesystem::rename(kTool, kAside); }

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

TEST_F(DriverStore, ToolThatFails_CountsAsDone) {
  nSimulator::setDriverStoreBehaviour({0, 5});
  EXPECT_EQ(install(package_), kSuccess);
  EXPECT_EQ(driverStoreRuns().size(), 1u);
}

TEST_F(DriverStore, PackageThatIsNotThere_IsTheToolsBusiness) {
  EXPECT_EQ(install("C:\\nothing.inf"), kSuccess);
  ASSERT_EQ(driverStoreRuns().size(), 1u);
  EXPECT_FALSE(driverStoreRuns()[0].isReadable);
}

TEST_F(DriverStore, SlowTool_IsWaitedFor) {
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
  putToolAside();
  EXPECT_EQ(install(package_), (tFailure{-26937, 2331}));
}

TEST_F(DriverStore, FolderInPlaceOfTheTool_CountsAsMissing) {
  putToolAside();
  std::filesystem::create_directory(kTool);
  EXPECT_EQ(install(package_), (tFailure{-26937, 2331}));
}

TEST_F(DriverStore, FileThatIsNoProgram_CannotBeStarted) {
  putToolAside();
  std::ofstream(kTool) << "no program";
  EXPECT_EQ(install(package_), (tFailure{-26938, 2359}));
}

}  // namespace
}  // namespace nTests
