#include "tests/schedules/exploration.h"

#include <algorithm>
#include <charconv>
#include <sstream>
#include <stdexcept>

namespace nTests {

using nFakeWindows::scheduler;
using nFakeWindows::tCandidate;
using nFakeWindows::tDecisionPoint;
using nFakeWindows::tScheduledStep;

// ---- Schedules as text ----

tDeviations deviationsOfTheRun() {
  tDeviations deviations;
  for (const tScheduledStep& step : scheduler().steps()) {
    if (step.isDeviation) {
      deviations.push_back({scheduler().nameOf(step.thread), step.call, step.nth,
                            step.isFault ? std::string() : scheduler().nameOf(step.next)});
    }
  }
  return deviations;
}

std::string textOf(const tDeviations& deviations) {
  std::string text;
  for (const tDeviation& deviation : deviations) {
    text += text.empty() ? "" : " ";
    text += deviation.thread + "." + deviation.call + "." + std::to_string(deviation.nth);
    text += deviation.next.empty() ? "!" : ">" + deviation.next;
  }
  return text;
}

namespace {

tDeviation deviationOf(const std::string& word) {
  const size_t firstDot = word.find('.');
  const size_t lastDot = word.rfind('.');
  const size_t mark = word.find_first_of(">!");
  tDeviation deviation;
  bool isValid = firstDot != lastDot && mark != std::string::npos && lastDot < mark;
  if (isValid) {
    const char* const end = word.data() + mark;
    isValid = std::from_chars(word.data() + lastDot + 1, end, deviation.nth).ptr == end;
  }
  if (!isValid) {
    throw std::invalid_argument("'" + word +
                                "' is not THREAD.CALL.NUMBER>NEXT or THREAD.CALL.NUMBER!");
  }
  deviation.thread = word.substr(0, firstDot);
  deviation.call = word.substr(firstDot + 1, lastDot - firstDot - 1);
  deviation.next = word.substr(mark + 1);
  return deviation;
}

}  // namespace

tDeviations deviationsOf(const std::string& text) {
  tDeviations deviations;
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    deviations.push_back(deviationOf(word));
  }
  return deviations;
}

// ---- All schedules within a bound ----

bool tExhaustiveSchedules::isWithinBound(tCost cost) const {
  switch (cost) {
    case tCost::preemption:
      return spent_.preemptions < bound_.preemptions;
    case tCost::fault:
      return spent_.faults < bound_.faults;
    default:
      return true;
  }
}

void tExhaustiveSchedules::spend(const tNode& node, unsigned times) {
  if (node.chosen != 0) {
    spent_.preemptions += node.cost == tCost::preemption ? times : 0;
    spent_.faults += node.cost == tCost::fault ? times : 0;
  }
}

size_t tExhaustiveSchedules::decide(size_t count, tCost cost) {
  if (at_ == path_.size()) {
    if (!isWithinBound(cost)) {
      return 0;
    }
    path_.push_back({0, count, cost});
  } else if (!isWithinBound(cost)) {
    return 0;
  }
  const tNode& node = path_[at_++];
  if (node.count != count || node.cost != cost) {
    throw std::logic_error("the scenario differs between two runs of the same schedule");
  }
  spend(node, 1);
  return node.chosen;
}

size_t tExhaustiveSchedules::choose(const tDecisionPoint& point) {
  return decide(point.candidates.size(), point.canContinue ? tCost::preemption : tCost::nothing);
}

bool tExhaustiveSchedules::fails(const tDecisionPoint&) {
  return decide(2, tCost::fault) != 0;
}

bool tExhaustiveSchedules::next() {
  // Every node is an alternative within the bound: decide() makes no others.
  while (!path_.empty() && path_.back().chosen + 1 == path_.back().count) {
    path_.pop_back();
  }
  at_ = 0;
  spent_ = {0, 0};
  if (path_.empty()) {
    return false;
  }
  ++path_.back().chosen;
  return true;
}

// ---- Random schedules ----

void tRandomSchedules::next() {
  longest_ = std::max(longest_, decisions_);
  decisions_ = 0;
  priorities_.clear();
  lowest_ = uint64_t{1} << 32;
  changePoints_.clear();
  for (unsigned i = 0; i < changes_; ++i) {
    changePoints_.push_back(random_() % longest_);
  }
}

uint64_t tRandomSchedules::priorityOf(unsigned number) {
  const auto [found, isNew] = priorities_.try_emplace(number, 0u);
  if (isNew) {
    found->second = random_() | uint64_t{1} << 32;
  }
  return found->second;
}

size_t tRandomSchedules::choose(const tDecisionPoint& point) {
  const bool isChange =
      std::find(changePoints_.begin(), changePoints_.end(), decisions_) != changePoints_.end();
  ++decisions_;
  if (isChange) {
    priorities_[point.candidates.front().number] = --lowest_;
  }
  size_t highest = 0;
  for (size_t i = 1; i < point.candidates.size(); ++i) {
    if (priorityOf(point.candidates[i].number) > priorityOf(point.candidates[highest].number)) {
      highest = i;
    }
  }
  return highest;
}

// ---- One schedule ----

const tDeviation* tWrittenSchedule::deviationAt(const tDecisionPoint& point, bool isFault) const {
  const auto found =
      std::find_if(deviations_.begin(), deviations_.end(), [&](const tDeviation& deviation) {
        return deviation.thread == point.thread && deviation.call == point.call &&
               deviation.nth == point.nth && deviation.next.empty() == isFault;
      });
  return found == deviations_.end() ? nullptr : &*found;
}

size_t tWrittenSchedule::choose(const tDecisionPoint& point) {
  const tDeviation* const deviation = deviationAt(point, false);
  if (deviation == nullptr) {
    return 0;
  }
  const auto next = std::find_if(
      point.candidates.begin(), point.candidates.end(),
      [deviation](const tCandidate& candidate) { return candidate.name == deviation->next; });
  if (next == point.candidates.end()) {
    return 0;
  }
  used_.push_back(deviation);
  return static_cast<size_t>(next - point.candidates.begin());
}

bool tWrittenSchedule::fails(const tDecisionPoint& point) {
  const tDeviation* const deviation = deviationAt(point, true);
  if (deviation != nullptr) {
    used_.push_back(deviation);
  }
  return deviation != nullptr;
}

tDeviations tWrittenSchedule::unused() const {
  tDeviations missing;
  for (const tDeviation& deviation : deviations_) {
    if (std::find(used_.begin(), used_.end(), &deviation) == used_.end()) {
      missing.push_back(deviation);
    }
  }
  return missing;
}

}  // namespace nTests
