// Fails every allocation of every scenario in turn.
#include "tests/faultsweep/faultsweeptest.h"

namespace nTests {
namespace {

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
        EXPECT_THAT(scenario().shortMemory, testing::Contains(step.code)) << step.name;
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
