#include "tests/fakewindows/scheduler.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <thread>
#include <utility>

#include "tests/fakewindows/faultplan.h"

namespace nFakeWindows {
namespace {

// Names the subjects of a report.
class tSubjectNames {
 public:
  std::string nameOf(const tSubject& subject) {
    const std::string_view kind = subject.kind;
    if (kind.empty()) {
      return {};
    }
    std::array<char, 64> text{};
    if (kind == tSubject::kCode) {
      std::snprintf(text.data(), text.size(), "%s 0x%08zX", subject.kind, subject.value);
    } else {
      const auto [found, isNew] = numbers_.try_emplace({kind, subject.value}, 0u);
      if (isNew) {
        found->second = ++counts_[kind];
      }
      std::snprintf(text.data(), text.size(), "%s %u", subject.kind, found->second);
    }
    return text.data();
  }

 private:
  std::map<std::pair<std::string_view, uintptr_t>, unsigned> numbers_;
  std::map<std::string_view, unsigned> counts_;
};

}  // namespace

thread_local tScheduler::tActor* tScheduler::current_ = nullptr;

tScheduler& scheduler() {
  // Never destroyed: its workers wait for routines until the process ends.
  static tScheduler& theScheduler = *new tScheduler;
  return theScheduler;
}

bool tScheduler::isActive() noexcept {
  return current_ != nullptr;
}

void tScheduler::run(iSchedule& schedule, const std::function<void()>& body) {
  begin(schedule);
  body();
  finish();
}

void tScheduler::begin(iSchedule& schedule) {
  const tInside inside;
  schedule_ = &schedule;
  actors_.clear();
  events_.clear();
  names_.clear();
  namesakes_.clear();
  steps_.clear();
  now_ = 0;
  tActor& main = actors_.emplace_back();
  main.number = add("main");
  current_ = &main;
}

void tScheduler::finish() {
  const tInside inside;
  await("end", {}, [this] {
    return std::all_of(std::next(actors_.begin()), actors_.end(),
                       [](const tActor& actor) { return actor.state == tState::finished; });
  });
  // The driver may still have events to let occur.
  settle();
  current_ = nullptr;
  actors_.clear();
  events_.clear();
  namesakes_.clear();
}

unsigned tScheduler::add(const std::string& name) {
  const unsigned nth = ++namesakes_[name];
  names_.push_back(nth == 1 ? name : name + std::to_string(nth));
  return static_cast<unsigned>(names_.size() - 1);
}

// ---- Threads ----

unsigned tScheduler::start(const std::string& name, std::function<void()> routine) {
  const tInside inside;
  if (current_ == nullptr) {
    free_.emplace_back(std::move(routine));
    return static_cast<unsigned>(free_.size() - 1);
  }
  tActor& actor = actors_.emplace_back();
  actor.number = add(name);
  if (idle_.empty()) {
    tWorker& worker = *workers_.emplace_back(std::make_unique<tWorker>());
    worker.thread = std::thread([this, &worker] { runWorker(worker); });
    idle_.push_back(&worker);
  }
  tWorker& worker = *idle_.back();
  idle_.pop_back();
  worker.actor = &actor;
  worker.routine = std::move(routine);
  worker.start.release();
  return actor.number;
}

void tScheduler::runWorker(tWorker& worker) {
  for (;;) {
    worker.start.acquire();
    if (!worker.routine) {
      return;
    }
    tActor& actor = *worker.actor;
    actor.turn.acquire();
    current_ = &actor;
    worker.routine();
    const tInside inside;
    worker.routine = nullptr;
    actor.call = "end";
    actor.subject = {};
    actor.state = tState::finished;
    current_ = nullptr;
    idle_.push_back(&worker);
    decide(actor);
  }
}

void tScheduler::endIdleThreads() {
  for (const std::unique_ptr<tWorker>& worker : workers_) {
    worker->start.release();
    worker->thread.join();
  }
  workers_.clear();
  idle_.clear();
}

void tScheduler::join(unsigned thread) {
  if (current_ == nullptr) {
    free_[thread].join();
    return;
  }
  await("join", {"thread", thread}, [this, thread] {
    return std::none_of(actors_.begin(), actors_.end(), [thread](const tActor& actor) {
      return actor.number == thread && actor.state != tState::finished;
    });
  });
}

void tScheduler::settle() {
  if (current_ == nullptr) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    return;
  }
  await(
      "settle", {}, [] { return false; }, 0);
}

void tScheduler::point(const char* call, tSubject subject) {
  if (current_ == nullptr || tOffTheRecord::isActive()) {
    return;
  }
  const tInside inside;
  current_->call = call;
  current_->subject = subject;
  decide(*current_);
}

bool tScheduler::await(const char* call, tSubject subject, const tCondition& condition,
                       std::optional<uint64_t> timeoutMs) {
  if (current_ == nullptr || (tOffTheRecord::isActive() && condition())) {
    return true;
  }
  const tInside inside;
  tActor& self = *current_;
  self.call = call;
  self.subject = subject;
  self.state = tState::blocked;
  self.condition = &condition;
  self.timedOut = false;
  self.deadline =
      timeoutMs ? std::optional(now_ + *timeoutMs) : std::optional<uint64_t>(std::nullopt);
  decide(self);
  const bool isTrue = !self.timedOut || condition();
  self.state = tState::ready;
  self.deadline.reset();
  self.timedOut = false;
  return isTrue;
}

bool tScheduler::fails(const char* call) {
  if (current_ == nullptr || tOffTheRecord::isActive()) {
    return false;
  }
  const tInside inside;
  candidates_.clear();
  const unsigned nth = ++current_->decisions[call];
  const bool isFault = schedule_->fails({nameOf(current_->number), call, nth, candidates_, true});
  if (isFault) {
    steps_.push_back({current_->number, call, nth, {}, current_->number, true, true, now_});
  }
  return isFault;
}

// ---- Decisions ----

bool tScheduler::canContinue(const tActor& actor) {
  return actor.state == tState::ready ||
         (actor.state == tState::blocked && (actor.timedOut || (*actor.condition)()));
}

void tScheduler::collectCandidates(const tActor& self) {
  candidates_.clear();
  actors_.remove_if(
      [&self](const tActor& actor) { return &actor != &self && actor.state == tState::finished; });
  if (canContinue(self)) {
    candidates_.push_back({self.number, nameOf(self.number)});
  }
  for (const tActor& actor : actors_) {
    if (&actor != &self && canContinue(actor)) {
      candidates_.push_back({actor.number, nameOf(actor.number)});
    }
  }
  for (const tEvent& event : events_) {
    if (!event.condition || event.condition()) {
      candidates_.push_back({event.number, nameOf(event.number)});
    }
  }
}

unsigned tScheduler::choose(tActor& self) {
  const unsigned nth = ++self.decisions[self.call];
  const bool isContinuable = candidates_.front().number == self.number;
  size_t chosen = 0;
  if (candidates_.size() > 1) {
    chosen = schedule_->choose({nameOf(self.number), self.call, nth, candidates_, isContinuable});
  }
  const unsigned next = candidates_[chosen].number;
  steps_.push_back({self.number, self.call, nth, self.subject, next, chosen != 0, false, now_});
  return next;
}

void tScheduler::decide(tActor& self) {
  for (;;) {
    collectCandidates(self);
    if (candidates_.empty()) {
      if (!passTime()) {
        stopForDeadlock();
      }
      continue;
    }
    const unsigned next = choose(self);
    if (occur(next)) {
      continue;
    }
    if (next == self.number) {
      return;
    }
    const bool hasEnded = self.state == tState::finished;
    std::find_if(actors_.begin(), actors_.end(), [next](const tActor& actor) {
      return actor.number == next;
    })->turn.release();
    // From here on another thread continues, which may remove an actor that has ended.
    if (!hasEnded) {
      self.turn.acquire();
    }
    return;
  }
}

bool tScheduler::passTime() {
  std::optional<uint64_t> earliest;
  for (const tActor& actor : actors_) {
    if (actor.state == tState::blocked && actor.deadline) {
      earliest = std::min(earliest.value_or(*actor.deadline), *actor.deadline);
    }
  }
  if (!earliest) {
    return false;
  }
  now_ = std::max(now_, *earliest);
  for (tActor& actor : actors_) {
    if (actor.state == tState::blocked && actor.deadline && *actor.deadline <= now_) {
      actor.timedOut = true;
    }
  }
  return true;
}

// ---- Events ----

void tScheduler::postEvent(const std::string& name, const void* key, tCondition condition,
                           std::function<void()> effect) {
  const tInside inside;
  events_.push_back({add(name), key, std::move(condition), std::move(effect)});
}

bool tScheduler::hasEvent(std::string_view name, const void* key) const {
  return std::any_of(events_.begin(), events_.end(), [&](const tEvent& event) {
    return event.key == key && nameOf(event.number).starts_with(name);
  });
}

void tScheduler::withdrawEvents(const void* key) {
  if (current_ != nullptr) {
    std::erase_if(events_, [key](const tEvent& event) { return event.key == key; });
  }
}

// Returns false if the number is not that of an event.
bool tScheduler::occur(unsigned number) {
  const auto found = std::find_if(events_.begin(), events_.end(),
                                  [number](const tEvent& event) { return event.number == number; });
  if (found == events_.end()) {
    return false;
  }
  const std::function<void()> effect = std::move(found->effect);
  events_.erase(found);
  effect();
  return true;
}

// ---- Reports ----

void tScheduler::stopForDeadlock() const {
  std::fputs("the fake Windows: no thread can continue\n", stderr);
  tSubjectNames subjects;
  for (const tActor& actor : actors_) {
    if (actor.state != tState::finished) {
      std::fprintf(stderr, "  %s waits in %s %s\n", nameOf(actor.number).c_str(), actor.call,
                   subjects.nameOf(actor.subject).c_str());
    }
  }
  stop("tScheduler", "deadlock, or a wake-up that is missing");
}

std::string tScheduler::table() const {
  tSubjectNames subjects;
  std::string text = "   step     ms  thread        call                          subject\n";
  for (size_t i = 0; i < steps_.size(); ++i) {
    const tScheduledStep& step = steps_[i];
    std::array<char, 256> line{};
    std::snprintf(line.data(), line.size(), "%7zu %6llu  %-12s  %-28s  %-20s%s%s\n", i + 1,
                  static_cast<unsigned long long>(step.milliseconds), nameOf(step.thread).c_str(),
                  step.call, subjects.nameOf(step.subject).c_str(),
                  step.isFault               ? " fails"
                  : step.next != step.thread ? (step.isDeviation ? " => " : " -> ")
                                             : "",
                  step.isFault || step.next == step.thread ? "" : nameOf(step.next).c_str());
    text += line.data();
  }
  return text;
}

}  // namespace nFakeWindows
