// A thread of a load: its random choices, its progress and the violations that it reports.
#ifndef TESTS_LOAD_LOADTHREAD_H
#define TESTS_LOAD_LOADTHREAD_H

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace nTests {

// A pseudo-random generator with the same sequence for the same seed on every machine.
class tRandom {
 public:
  explicit tRandom(uint64_t seed) noexcept : state_(seed) {}

  [[nodiscard]] uint64_t next() noexcept {
    state_ += UINT64_C(0x9E3779B97F4A7C15);
    uint64_t mixed = state_;
    mixed = (mixed ^ (mixed >> 30)) * UINT64_C(0xBF58476D1CE4E5B9);
    mixed = (mixed ^ (mixed >> 27)) * UINT64_C(0x94D049BB133111EB);
    return mixed ^ (mixed >> 31);
  }
  // 0 to count - 1.
  [[nodiscard]] uint32_t below(uint32_t count) noexcept {
    return static_cast<uint32_t>(next() % count);
  }
  [[nodiscard]] bool oneIn(uint32_t count) noexcept { return below(count) == 0; }
  template <class Value, size_t Count>
  [[nodiscard]] const Value& oneOf(const Value (&values)[Count]) noexcept {
    return values[below(Count)];
  }

 private:
  uint64_t state_;
};

// A contract was violated under load. The text describes the violation.
class tContractViolation : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Throws unless the condition holds; `contract` states it.
inline void require(bool condition, const std::string& contract) {
  if (!condition) {
    throw tContractViolation(contract);
  }
}

// The current operation of a thread under load.
enum class tStep : uint32_t {
  ended,
  betweenSteps,
  createSession,
  calculate,
  reserve,
  program,
  path,
  demote,
  awaitDemotion,
  unprogram,
  unreserve,
  destroyRoute,
  terminals,
  destroySession,
  openController,
  readAttribute,
  writeAttribute,
  selfTest,
  update,
  pendingRequest,
  closeController,
};

[[nodiscard]] const char* nameOf(tStep step) noexcept;

// The progress of a thread, readable by other threads, and by other processes through
// zero-initialised shared memory.
class tProgress {
 public:
  void enter(tStep step) noexcept {
    step_.store(step, std::memory_order_relaxed);
    moves_.fetch_add(1, std::memory_order_relaxed);
  }
  [[nodiscard]] tStep step() const noexcept { return step_.load(std::memory_order_relaxed); }
  // The number of steps begun.
  [[nodiscard]] uint64_t moves() const noexcept { return moves_.load(std::memory_order_relaxed); }

 private:
  std::atomic<tStep> step_{tStep::ended};
  std::atomic<uint64_t> moves_{0};
};

// Detects threads that make no progress.
class tWatchdog {
 public:
  using tClock = std::chrono::steady_clock;

  explicit tWatchdog(tClock::duration timeout) : timeout_(timeout) {}

  // `thread` is its name in reports. The progress must outlive the watchdog.
  void watch(std::string thread, const tProgress& progress);
  // Checks all threads; call it repeatedly. True if a thread has made no progress for longer than
  // the timeout.
  [[nodiscard]] bool hasStuckThread(tClock::time_point now = tClock::now());
  // One line for each thread: its step, the time since the step began, and the number of steps.
  [[nodiscard]] std::string report(tClock::time_point now = tClock::now()) const;

 private:
  struct tWatched {
    std::string thread;
    const tProgress* progress;
    uint64_t moves;
    tClock::time_point since;
  };

  tClock::duration timeout_;
  std::vector<tWatched> watched_;
};

}  // namespace nTests

#endif
