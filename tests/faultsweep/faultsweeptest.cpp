#include "tests/faultsweep/faultsweeptest.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "tests/fakewindows/allocationplan.h"
#include "zoapal/protons/cppnewdelete/tquarantinedstorage.h"

namespace nTests {
namespace {

namespace fs = std::filesystem;

// In memory if possible: thousands of updates are slow on a disk.
fs::path placeForFiles() {
  const fs::path memory = "/dev/shm";
  return fs::is_directory(memory) ? memory : fs::path(testing::TempDir());
}

// The name of the current test as a file name.
std::string testName() {
  const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
  std::string name = std::string(test.test_suite_name()) + "." + test.name();
  std::replace(name.begin(), name.end(), '/', '.');
  return name;
}

}  // namespace

void FaultSweepTest::SetUp() {
  FakeWindowsTest::SetUp();
  // Unique per process: tests run in parallel.
  temporary_ = placeForFiles() / ("quenra." + std::to_string(getpid()));
  fs::create_directories(temporary_);
  setenv("TMPDIR", temporary_.c_str(), 1);
  // Two runs: some memory is allocated once and kept, for example the locale's facets.
  runClean();
  runClean();
  bytesBefore_ = bytesAfter_;
}

void FaultSweepTest::TearDown() {
  unsetenv("TMPDIR");
  fs::remove_all(temporary_);
  FakeWindowsTest::TearDown();
  std::printf("%u faults\n", faults_);
  fs::create_directories(FAULT_COUNTS);
  std::ofstream(fs::path(FAULT_COUNTS) / testName()) << faults_ << "\n";
}

void FaultSweepTest::begin() const {
  // Most scenarios leave the folder empty; emptying it again would be slow.
  if (!fs::is_empty(temporary_)) {
    fs::remove_all(temporary_);
    fs::create_directories(temporary_);
  }
  nFakeWindows::faultPlan().reset();
  scenario().prepare();
  nFakeWindows::faultPlan().reset();
}

void FaultSweepTest::end(const tRun& run) {
  nFakeWindows::objects().waitForThreads();
  nQUENRA1400::nZOAPAL000::tQuarantinedStorage::releaseAll();
  EXPECT_THAT(nFakeWindows::objects().open(), testing::IsEmpty());
  EXPECT_THAT(nFakeWindows::com()->open(), testing::IsEmpty());
  bytesAfter_ = nFakeWindows::bytesInUse();
  // Less is permitted: a failure may prevent the allocation of memory that sessions share.
  EXPECT_LE(bytesAfter_, bytesBefore_);
  scenario().check(run);
}

void FaultSweepTest::expectNextRunLike(const tRun& clean) {
  EXPECT_EQ(runClean()->steps(), clean.steps()) << "the next run works";
  EXPECT_EQ(bytesAfter_, bytesBefore_);
}

std::string scenarioName(const testing::TestParamInfo<size_t>& info) {
  return std::string(scenarios()[info.param].name);
}

}  // namespace nTests
