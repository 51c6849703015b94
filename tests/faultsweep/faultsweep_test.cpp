// Fails every Windows call of every scenario in turn with every error that has a code, and every
// allocation of every scenario in turn.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "simulator/control/tsimulatedmachine.h"
#include "tests/fakewindows/allocationplan.h"
#include "tests/fakewindows/fakewindowstest.h"
#include "tests/faultsweep/consequences.h"
#include "tests/faultsweep/scenarios.h"
#include "zoapal/protons/cppnewdelete/tquarantinedstorage.h"

namespace nTests {
namespace {

namespace fs = std::filesystem;

// In memory if possible: thousands of updates are slow on a disk.
fs::path fileSystemForTests() {
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

// Runs a scenario repeatedly, each time with one fault, and counts the faults.
class FaultSweepTest : public nFakeWindows::FakeWindowsTest,
                       public testing::WithParamInterface<size_t> {
 protected:
  void SetUp() override {
    FakeWindowsTest::SetUp();
    // Unique per process: tests run in parallel.
    temporary_ = fileSystemForTests() / ("quenra." + std::to_string(getpid()));
    fs::create_directories(temporary_);
    setenv("TMPDIR", temporary_.c_str(), 1);
    // Two runs: some memory is allocated once and kept.
    runClean();
    runClean();
    bytesBefore_ = bytesAfter_;
  }
  void TearDown() override {
    unsetenv("TMPDIR");
    fs::remove_all(temporary_);
    FakeWindowsTest::TearDown();
    std::printf("%u faults\n", faults_);
    fs::create_directories(FAULT_COUNTS);
    std::ofstream(fs::path(FAULT_COUNTS) / testName()) << faults_ << "\n";
  }

  [[nodiscard]] static const tScenario& scenario() { return scenarios()[GetParam()]; }

  // Runs the scenario on a machine prepared for it. `makePlan` plans the faults. Expects no open
  // handles and no more bytes in use than before.
  template <class MakePlan>
  std::unique_ptr<tRun> runWith(MakePlan makePlan, unsigned failingAllocation = 0) {
    begin();
    makePlan();
    auto run = std::make_unique<tRun>(failingAllocation);
    scenario().run(*run);
    end(*run);
    return run;
  }
  std::unique_ptr<tRun> runClean() {
    return runWith([] {});
  }

  // Runs the scenario after a fault and expects the steps and the memory use of a clean run.
  void expectNextRunLike(const tRun& clean) {
    EXPECT_EQ(runClean()->steps(), clean.steps()) << "the next run works";
    EXPECT_EQ(bytesAfter_, bytesBefore_);
  }
  void countFault() { ++faults_; }

 private:
  void begin() const {
    // Most scenarios leave the folder empty; emptying it again would be slow.
    if (!fs::is_empty(temporary_)) {
      fs::remove_all(temporary_);
      fs::create_directories(temporary_);
    }
    nFakeWindows::faultPlan().reset();
    scenario().prepare();
    nFakeWindows::faultPlan().reset();
  }
  void end(const tRun& run) {
    nFakeWindows::objects().waitForThreads();
    nQUENRA1400::nZOAPAL000::tQuarantinedStorage::releaseAll();
    EXPECT_THAT(nFakeWindows::objects().open(), testing::IsEmpty());
    EXPECT_THAT(nFakeWindows::com()->open(), testing::IsEmpty());
    bytesAfter_ = nFakeWindows::bytesInUse();
    // Less is permitted: a failure may prevent the allocation of memory that sessions share.
    EXPECT_LE(bytesAfter_, bytesBefore_);
    scenario().check(run);
  }

  unsigned faults_ = 0;
  size_t bytesBefore_ = SIZE_MAX;
  size_t bytesAfter_ = 0;
  std::filesystem::path temporary_;
};

std::string scenarioName(const testing::TestParamInfo<size_t>& info) {
  return std::string(scenarios()[info.param].name);
}

// ---- Windows calls ----

using nFakeWindows::faultPlan;
using nFakeWindows::nameOf;
using nFakeWindows::tCall;
using nFakeWindows::tCompletion;
using tSteps = std::vector<tStep>;

class CallFaults : public FaultSweepTest {
 protected:
  void SetUp() override {
    FaultSweepTest::SetUp();
    runWithoutFaults();
  }

  // Records the calls and steps of a clean run, and the steps of one without a Marten.
  void runWithoutFaults() {
    clean_ = runClean();
    record_ = faultPlan().calls();
    usePresence({1, 0, 1});
    withoutMarten_ = runClean();
    usePresence({1, 1, 1});
  }

  // Plans the failure of a call.
  using tMakePlan = void (*)(const tCallSite& site, uint32_t error);

  void failEach(const std::vector<tCallSite>& sites, tMakePlan makePlan) {
    for (const tCallSite& site : sites) {
      for (const tErrorRow& reason : errorRows()) {
        const tExpectation expectation = expectationOf(site, reason);
        if (expectation.consequence != tConsequence::notAFailure) {
          fail(site, reason, expectation, makePlan);
        }
      }
    }
  }

  [[nodiscard]] const std::vector<nFakeWindows::tCallRecord>& record() const { return record_; }

 private:
  static void usePresence(const tSimulatorPresence& presence) {
    nSimulator::tSimulatedMachine().setPresence(presence);
  }

  void fail(const tCallSite& site, const tErrorRow& reason, const tExpectation& expectation,
            tMakePlan makePlan) {
    SCOPED_TRACE(std::string(nameOf(site.call)) + " " + site.argument + ", call " +
                 std::to_string(site.nth) + ", error " + std::to_string(reason.error));
    const auto run = runWith([&] { makePlan(site, errorReportedBy(site.call, reason.error)); });
    countFault();
    EXPECT_EQ(run->steps(), stepsAfter(site, expectation));
    expectNextRunLike(*clean_);
  }

  [[nodiscard]] tSteps stepsAfter(const tCallSite& site, const tExpectation& expectation) const {
    const size_t step = clean_->stepOf(site.call, site.nth);
    if (expectation.consequence == tConsequence::none || step == clean_->steps().size()) {
      return clean_->steps();
    }
    tSteps steps = expectation.consequence == tConsequence::withoutMarten ? withoutMarten_->steps()
                                                                          : clean_->steps();
    steps[step].code = expectation.code;
    if (expectation.consequence == tConsequence::withoutDemotions) {
      for (tStep& later : steps) {
        later.code = later.name == kDemotionStep ? kNotDelivered : later.code;
      }
    }
    const auto rest = steps.begin() + static_cast<ptrdiff_t>(step) + 1;
    if (steps[step].kind == tStepKind::needed && steps[step].code < 0) {
      steps.erase(std::remove_if(rest, steps.end(),
                                 [](const tStep& s) { return s.kind != tStepKind::silent; }),
                  steps.end());
    }
    return steps;
  }

  std::unique_ptr<tRun> clean_;
  std::unique_ptr<tRun> withoutMarten_;
  std::vector<nFakeWindows::tCallRecord> record_;
};

TEST_P(CallFaults, EachHasItsCode_LeavesNothing_AndTheNextRunWorks) {
  failEach(callSitesOf(record()), [](const tCallSite& site, uint32_t error) {
    faultPlan().failCall(site.call, site.nth, error);
  });
}

TEST_P(CallFaults, OfARequestThatIsPendingFirst_EachHasItsCode) {
  failEach(awaitedRequestsOf(record()), [](const tCallSite& site, uint32_t error) {
    // Only that request becomes pending, because waiting is slow.
    faultPlan().beforeCall(tCall::deviceIoControl, site.nth,
                           [] { faultPlan().complete(tCompletion::later); });
    faultPlan().beforeCall(tCall::getOverlappedResult, 1,
                           [] { faultPlan().complete(tCompletion::atOnce); });
    faultPlan().failCall(tCall::getOverlappedResult, 1, error);
  });
}

INSTANTIATE_TEST_SUITE_P(All, CallFaults, testing::Range(size_t{0}, scenarios().size()),
                         scenarioName);

// ---- Allocations ----

class AllocationFaults : public FaultSweepTest {};

TEST_P(AllocationFaults, EachHasACodeOfItsKind_LeavesNothing_AndTheNextRunWorks) {
  const auto clean = runClean();
  for (unsigned nth = 1; nth <= clean->allocations(); ++nth) {
    SCOPED_TRACE("allocation " + std::to_string(nth));
    const auto run = runWith([] {}, nth);
    countFault();
    // The steps equal those of the clean run up to the first that ran out of memory, if any.
    for (size_t i = 0; i < run->steps().size(); ++i) {
      const tStep& step = run->steps()[i];
      if (i >= clean->steps().size() || step != clean->steps()[i]) {
        EXPECT_THAT(scenario().outOfMemoryCodes, testing::Contains(step.code)) << step.name;
        break;
      }
    }
    expectNextRunLike(*clean);
  }
}

INSTANTIATE_TEST_SUITE_P(All, AllocationFaults, testing::Range(size_t{0}, scenarios().size()),
                         scenarioName);

}  // namespace
}  // namespace nTests
