// Deterministic scheduling of the threads of a test.
//
// During a run of the scheduler one thread runs at a time. At each call of the fake Windows that other
// threads can observe or influence, a schedule decides which thread continues. What a driver does
// on its own, such as completing a request later, is an event, which is scheduled like a thread.
// Time is virtual: it passes only when no thread and no event can continue, and then up to the
// earliest time-out.
#ifndef TESTS_FAKEWINDOWS_SCHEDULER_H
#define TESTS_FAKEWINDOWS_SCHEDULER_H

#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <semaphore>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace nFakeWindows {

// A thread or an event that can continue.
struct tCandidate {
  unsigned number;  // in the order in which threads and events were started; the same in each run
  std::string_view name;
};

// A place at which a schedule decides.
struct tDecisionPoint {
  std::string_view thread;
  std::string_view call;
  unsigned nth;  // decision of this thread at this call, from 1
  // The first one is the thread itself, unless it is blocked or has ended.
  const std::vector<tCandidate>& candidates;
  bool canContinue;  // otherwise every choice is without a preemption
};

class iSchedule {
 public:
  iSchedule() = default;
  iSchedule(const iSchedule&) = delete;
  iSchedule& operator=(const iSchedule&) = delete;
  virtual ~iSchedule() = default;

  // Returns the index of the candidate that continues.
  [[nodiscard]] virtual size_t choose(const tDecisionPoint& point) = 0;
  // True if the call fails. The candidates of the point are empty.
  [[nodiscard]] virtual bool fails(const tDecisionPoint& point) = 0;
};

// Every thread runs until it is blocked; no call fails.
class tPlainSchedule final : public iSchedule {
 public:
  [[nodiscard]] size_t choose(const tDecisionPoint&) override { return 0; }
  [[nodiscard]] bool fails(const tDecisionPoint&) override { return false; }
};

// The object or the request of a call. Reports number the subjects of each kind in the order of their first use.
struct tSubject {
  static constexpr const char* kCode = "request";  // its value is a code, which reports show

  const char* kind = "";
  uintptr_t value = 0;
};

// One decision of a run, for its report.
struct tScheduledStep {
  unsigned thread = 0;
  const char* call = "";
  unsigned nth = 0;
  tSubject subject;
  unsigned next = 0;          // the thread or the event that continues
  bool isDeviation = false;   // from the plain schedule
  bool isFault = false;       // the call fails
  uint64_t milliseconds = 0;  // of the virtual time
};

class tScheduler {
 public:
  using tCondition = std::function<bool()>;

  // A run: the calling thread is its first thread, with the name "main". finish() waits for all others.
  // The program ends if the threads wait for each other.
  void begin(iSchedule& schedule);
  void finish();
  // Runs `body` within a run.
  void run(iSchedule& schedule, const std::function<void()>& body);

  // True on the threads of a run.
  [[nodiscard]] static bool isActive() noexcept;

  // The following functions require a thread of a run, unless they say otherwise. Outside a run the
  // threads that start() starts run freely, so that a test can compare.

  // Starts a thread and returns its number, the argument of join(). Threads and events with the same
  // name are numbered: "library", "library2".
  unsigned start(const std::string& name, std::function<void()> routine);
  void join(unsigned thread);
  // Waits until no other thread and no event can continue before time passes; outside a run for some
  // milliseconds.
  void settle();

  // A place at which another thread may continue. No effect outside a run.
  void point(const char* call, tSubject subject = {});
  // Blocks until the condition is true; returns false after the time-out. Returns true at once outside
  // a run.
  bool await(const char* call, tSubject subject, const tCondition& condition,
             std::optional<uint64_t> timeoutMs = std::nullopt);
  // Returns true if the schedule makes this call fail. False outside a run.
  [[nodiscard]] bool fails(const char* call);

  // Posts an event, which occurs at any time from the moment its condition is true.
  void postEvent(const std::string& name, const void* key, tCondition condition,
                 std::function<void()> effect);
  [[nodiscard]] bool hasEvent(std::string_view name, const void* key) const;
  // The events with this key will not occur. No effect outside a run.
  void withdrawEvents(const void* key);

  // Milliseconds since the start of the run.
  [[nodiscard]] uint64_t now() const noexcept { return now_; }

  // Ends the threads that are kept for the next run. Not during a run.
  void endIdleThreads();

  // The decisions of the current run, or of the last one.
  [[nodiscard]] const std::vector<tScheduledStep>& steps() const noexcept { return steps_; }
  // The name of a thread or an event by its number.
  [[nodiscard]] const std::string& nameOf(unsigned number) const { return names_[number]; }
  // The decisions as a table for people.
  [[nodiscard]] std::string table() const;

 private:
  enum class tState : uint8_t {
    ready,
    blocked,
    finished
  };
  struct tActor {
    unsigned number = 0;
    tState state = tState::ready;
    const tCondition* condition = nullptr;
    std::optional<uint64_t> deadline;
    bool timedOut = false;
    const char* call = "start";
    tSubject subject;
    std::map<std::string_view, unsigned> decisions;
    std::counting_semaphore<> turn{0};
  };
  struct tEvent {
    unsigned number;
    const void* key;
    tCondition condition;
    std::function<void()> effect;
  };
  // Executes the routines of one actor after the other. Ends when it is started without a routine.
  struct tWorker {
    tActor* actor = nullptr;
    std::function<void()> routine;
    std::counting_semaphore<> start{0};
    std::thread thread;
  };

  unsigned add(const std::string& name);
  [[nodiscard]] static bool canContinue(const tActor& actor);
  void collectCandidates(const tActor& self);
  // Lets the threads and events continue that the schedule chooses, until it chooses `self`, or
  // until another thread continues after `self` has ended.
  void decide(tActor& self);
  // Returns the number of the chosen candidate.
  [[nodiscard]] unsigned choose(tActor& self);
  [[nodiscard]] bool passTime();
  [[nodiscard]] bool occur(unsigned number);
  void runWorker(tWorker& worker);
  [[noreturn]] void stopForDeadlock() const;

  static thread_local tActor* current_;

  iSchedule* schedule_ = nullptr;
  std::list<tActor> actors_;
  std::vector<tEvent> events_;
  std::vector<std::string> names_;  // of threads and events, by number
  std::map<std::string, unsigned> namesakes_;
  std::vector<std::unique_ptr<tWorker>> workers_;
  std::vector<tWorker*> idle_;
  std::vector<tCandidate> candidates_;
  std::vector<tScheduledStep> steps_;
  uint64_t now_ = 0;
  std::deque<std::thread> free_;  // threads outside a run
};

[[nodiscard]] tScheduler& scheduler();

// Runs the plain schedule for a scope: a test in virtual time.
class tVirtualTime {
 public:
  tVirtualTime() { scheduler().begin(schedule_); }
  tVirtualTime(const tVirtualTime&) = delete;
  tVirtualTime& operator=(const tVirtualTime&) = delete;
  ~tVirtualTime() { scheduler().finish(); }

 private:
  tPlainSchedule schedule_;
};

}  // namespace nFakeWindows

#endif
