// The ways in which schedules are chosen: all within a bound, random ones, and one that is written
// down.
#ifndef TESTS_SCHEDULES_EXPLORATION_H
#define TESTS_SCHEDULES_EXPLORATION_H

#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "tests/fakewindows/scheduler.h"

namespace nTests {

// A choice that differs from the plain schedule: at the nth decision of a thread at a call another
// thread or event continues, or the call fails.
struct tDeviation {
  std::string thread;
  std::string call;
  unsigned nth = 0;
  std::string next;  // empty: the call fails

  bool operator==(const tDeviation&) const = default;
};
using tDeviations = std::vector<tDeviation>;

// The deviations of the last run of the scheduler.
[[nodiscard]] tDeviations deviationsOfTheRun();

// A schedule as text: "main.CloseHandle.2>library library.CancelIoEx.1!".
[[nodiscard]] std::string textOf(const tDeviations& deviations);
// Throws std::invalid_argument with the reason if the text is not a schedule.
[[nodiscard]] tDeviations deviationsOf(const std::string& text);

// How many deviations a schedule may have that cost something. Choosing among others when a thread
// is blocked or ends costs nothing.
struct tBound {
  unsigned preemptions = 2;
  unsigned faults = 0;
};

// Every schedule within a bound, one for each run, without repetition.
class tExhaustiveSchedules final : public nFakeWindows::iSchedule {
 public:
  explicit tExhaustiveSchedules(const tBound& bound) : bound_(bound) {}

  // Proceeds to the next schedule. Call it after each run; false when there is none.
  [[nodiscard]] bool next();

  [[nodiscard]] size_t choose(const nFakeWindows::tDecisionPoint& point) override;
  [[nodiscard]] bool fails(const nFakeWindows::tDecisionPoint& point) override;

 private:
  enum class tCost : uint8_t {
    nothing,
    preemption,
    fault
  };
  // A decision, its alternatives being numbers below `count`.
  struct tNode {
    size_t chosen;
    size_t count;
    tCost cost;  // of every alternative but 0
  };

  [[nodiscard]] size_t decide(size_t count, tCost cost);
  [[nodiscard]] bool isWithinBound(tCost cost) const;
  void spend(const tNode& node, unsigned times);

  const tBound bound_;
  tBound spent_{0, 0};  // by the decisions before the current one
  std::vector<tNode> path_;
  size_t at_ = 0;
};

// Random priorities: the candidate of the highest priority continues. At `changes` random decisions
// the thread that could continue gets the lowest one. Finds a bug that needs so many changes in a
// run of n decisions by t threads with a probability of at least 1 / (t * n^changes).
class tRandomSchedules final : public nFakeWindows::iSchedule {
 public:
  tRandomSchedules(uint64_t seed, unsigned changes) : random_(seed), changes_(changes) {}

  // Proceeds to another schedule.
  void next();

  [[nodiscard]] size_t choose(const nFakeWindows::tDecisionPoint& point) override;
  [[nodiscard]] bool fails(const nFakeWindows::tDecisionPoint&) override { return false; }

 private:
  [[nodiscard]] uint64_t priorityOf(unsigned number);

  std::mt19937_64 random_;
  const unsigned changes_;
  std::map<unsigned, uint64_t> priorities_;
  std::vector<uint64_t> changePoints_;
  uint64_t decisions_ = 0;
  uint64_t longest_ = 1;
  uint64_t lowest_ = 0;
};

// A schedule that is written down.
class tWrittenSchedule final : public nFakeWindows::iSchedule {
 public:
  explicit tWrittenSchedule(tDeviations deviations) : deviations_(std::move(deviations)) {}

  // The deviations for which the run had no place.
  [[nodiscard]] tDeviations unused() const;

  [[nodiscard]] size_t choose(const nFakeWindows::tDecisionPoint& point) override;
  [[nodiscard]] bool fails(const nFakeWindows::tDecisionPoint& point) override;

 private:
  // Null if the plain schedule continues here.
  [[nodiscard]] const tDeviation* deviationAt(const nFakeWindows::tDecisionPoint& point,
                                              bool isFault) const;

  const tDeviations deviations_;
  std::vector<const tDeviation*> used_;
};

}  // namespace nTests

#endif
