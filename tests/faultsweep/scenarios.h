// The scenarios of the fault sweep: typical uses of the library through its exports.
#ifndef TESTS_FAULTSWEEP_SCENARIOS_H
#define TESTS_FAULTSWEEP_SCENARIOS_H

#include <algorithm>
#include <array>
#include <cstdint>
#include <ostream>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tests/fakewindows/allocationplan.h"
#include "tests/fakewindows/faultplan.h"

namespace nTests {

enum class tStepKind : uint8_t {
  needed,  // a failure ends the scenario, except for silent steps
  single,  // the scenario continues after a failure
  silent,  // cleans up: always runs and reports nothing
};

// The result of a step of a scenario.
struct tStep {
  std::string name;
  tStepKind kind;
  int32_t code = 0;
  bool operator==(const tStep&) const = default;
};
inline void PrintTo(const tStep& step, std::ostream* out) {
  *out << step.name << ": " << step.code;
}

using tCallCounts = std::array<unsigned, nFakeWindows::kCalls>;

// A run of a scenario. Its steps are calls of exports.
class tRun {
 public:
  // Makes the nth allocation of the steps fail; 0: none.
  explicit tRun(unsigned failingAllocation = 0) : failingAllocation_(failingAllocation) {}
  tRun(const tRun&) = delete;
  tRun& operator=(const tRun&) = delete;

  template <class Call>
  void need(const std::string& name, Call call) {
    if (!isOver_) {
      perform(name, tStepKind::needed, call);
      isOver_ = steps_.back().code < 0;
    }
  }
  template <class Call>
  void single(const std::string& name, Call call) {
    if (!isOver_) {
      perform(name, tStepKind::single, call);
    }
  }
  template <class Call>
  void silently(const std::string& name, Call call) {
    perform(name, tStepKind::silent, [call] {
      call();
      return 0;
    });
  }

  [[nodiscard]] const std::vector<tStep>& steps() const { return steps_; }
  // The index of the step that made the nth call of a function; the number of steps if none did.
  [[nodiscard]] size_t stepOf(nFakeWindows::tCall call, unsigned nth) const {
    const auto found = std::find_if(
        countsAfter_.begin(), countsAfter_.end(),
        [=](const tCallCounts& counts) { return counts[static_cast<size_t>(call)] >= nth; });
    return static_cast<size_t>(found - countsAfter_.begin());
  }
  [[nodiscard]] unsigned allocations() const { return allocations_; }

 private:
  template <class Call>
  void perform(const std::string& name, tStepKind kind, Call call) {
    int32_t code = 0;
    {
      const unsigned failing =
          failingAllocation_ > allocations_ ? failingAllocation_ - allocations_ : 0;
      const nFakeWindows::tAllocationPlan plan(failing);
      code = call();
      allocations_ += plan.count();
    }
    steps_.push_back({name, kind, code});
    countsAfter_.push_back(nFakeWindows::faultPlan().callCounts());
  }

  const unsigned failingAllocation_;
  unsigned allocations_ = 0;
  bool isOver_ = false;
  std::vector<tStep> steps_;
  std::vector<tCallCounts> countsAfter_;
};

struct tScenario {
  std::string_view name;
  // Prepares the machine for the scenario.
  void (*prepare)();
  void (*run)(tRun& run);
  // Checks the invariants that must hold after each run, with or without a fault.
  void (*check)(const tRun& run);
  // The codes that a failed step may report when out of memory.
  std::set<int32_t> outOfMemoryCodes;
};

// The step in which a demotion must be delivered, and its code if it is not.
inline constexpr const char* kDemotionStep = "demotion is delivered";
inline constexpr int32_t kNotDelivered = 1;

[[nodiscard]] const std::vector<tScenario>& scenarios();

}  // namespace nTests

#endif
