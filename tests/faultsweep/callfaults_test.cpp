// Fails every Windows call of every scenario in turn with every error that has a code.
#include <algorithm>
#include <iterator>

#include "simulator/control/tsimulatedmachine.h"
#include "tests/faultsweep/consequences.h"
#include "tests/faultsweep/faultsweeptest.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::nameOf;
using nFakeWindows::tCall;
using nFakeWindows::tCompletion;
using tSteps = std::vector<tStep>;

class CallFaults : public FaultSweepTest {
 protected:
  void SetUp() override {
    FaultSweepTest::SetUp();
    learn();
  }

  // Records the calls and steps of a clean run, and the steps of one without a Marten.
  void learn() {
    clean_ = runClean();
    record_ = faultPlan().calls();
    usePresence({1, 0, 1});
    withoutMarten_ = runClean();
    usePresence({1, 1, 1});
  }

  // Plans the failure of a call.
  using tMakePlan = void (*)(const tPlace& place, uint32_t error);

  void failEach(const std::vector<tPlace>& places, tMakePlan makePlan) {
    for (const tPlace& place : places) {
      for (const tErrorRow& reason : errorRows()) {
        const tExpectation expectation = expectationOf(place, reason);
        if (expectation.consequence != tConsequence::notAFailure) {
          fail(place, reason, expectation, makePlan);
        }
      }
    }
  }

  [[nodiscard]] const std::vector<nFakeWindows::tCallRecord>& record() const { return record_; }

 private:
  static void usePresence(const tSimulatorPresence& presence) {
    nSimulator::tSimulatedMachine().setPresence(presence);
  }

  void fail(const tPlace& place, const tErrorRow& reason, const tExpectation& expectation,
            tMakePlan makePlan) {
    SCOPED_TRACE(std::string(nameOf(place.call)) + " " + place.argument + ", call " +
                 std::to_string(place.nth) + ", error " + std::to_string(reason.error));
    const auto run = runWith([&] { makePlan(place, errorAsToldBy(place.call, reason.error)); });
    countFault();
    EXPECT_EQ(run->steps(), stepsAfter(place, expectation));
    expectNextRunLike(*clean_);
  }

  [[nodiscard]] tSteps stepsAfter(const tPlace& place, const tExpectation& expectation) const {
    const size_t step = clean_->stepOf(place.call, place.nth);
    if (expectation.consequence == tConsequence::none || step == clean_->steps().size()) {
      return clean_->steps();
    }
    tSteps steps = expectation.consequence == tConsequence::withoutMarten ? withoutMarten_->steps()
                                                                          : clean_->steps();
    steps[step].code = expectation.code;
    if (expectation.consequence == tConsequence::untold) {
      for (tStep& later : steps) {
        later.code = later.name == kDemotionStep ? kNotTold : later.code;
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
  failEach(placesOf(record()), [](const tPlace& place, uint32_t error) {
    faultPlan().failCall(place.call, place.nth, error);
  });
}

TEST_P(CallFaults, OfARequestThatIsPendingFirst_EachHasItsCode) {
  failEach(awaitedRequestsOf(record()), [](const tPlace& place, uint32_t error) {
    // Only that request becomes pending, because waiting is slow.
    faultPlan().beforeCall(tCall::deviceIoControl, place.nth,
                           [] { faultPlan().complete(tCompletion::later); });
    faultPlan().beforeCall(tCall::getOverlappedResult, 1,
                           [] { faultPlan().complete(tCompletion::atOnce); });
    faultPlan().failCall(tCall::getOverlappedResult, 1, error);
  });
}

INSTANTIATE_TEST_SUITE_P(All, CallFaults, testing::Range(size_t{0}, scenarios().size()),
                         scenarioName);

}  // namespace
}  // namespace nTests
