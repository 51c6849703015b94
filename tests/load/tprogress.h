#ifndef TESTS_LOAD_TPROGRESS_H
#define TESTS_LOAD_TPROGRESS_H

#include <atomic>
#include <cstdint>

namespace nTests {

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
  hearDemotion,
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

}  // namespace nTests

#endif
