#ifndef TESTS_FAULTSWEEP_FAULTSWEEPTEST_H
#define TESTS_FAULTSWEEP_FAULTSWEEPTEST_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "tests/fakewindows/fakewindowstest.h"
#include "tests/faultsweep/scenarios.h"

namespace nTests {

// Runs a scenario repeatedly, each time with one fault, and counts the faults.
class FaultSweepTest : public nFakeWindows::FakeWindowsTest,
                       public testing::WithParamInterface<size_t> {
 protected:
  void SetUp() override;
  void TearDown() override;

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
  void expectNextRunLike(const tRun& clean);
  void countFault() { ++faults_; }

 private:
  void begin() const;
  void end(const tRun& run);

  unsigned faults_ = 0;
  size_t bytesBefore_ = SIZE_MAX;
  size_t bytesAfter_ = 0;
  std::filesystem::path temporary_;
};

[[nodiscard]] std::string scenarioName(const testing::TestParamInfo<size_t>& info);

}  // namespace nTests

#endif
