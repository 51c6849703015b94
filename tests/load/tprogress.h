#ifndef TESTS_LOAD_TPROGRESS_H
#define TESTS_LOAD_TPROGRESS_H

#include <atomic>
#include <cstdint>

namespace nTests {

// What a thread under load is doing.
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

// Where a thread stands, for others to look at; also from another process, through shared memory that
// begins as zeros.
class tProgress {
 public:
  void enter(tStep step) noexcept {
    step_.store(step, std::memory_order_relaxed);
    moves_.fetch_add(1, std::memory_order_relaxed);
  }
  [[nodiscard]] tStep step() const noexcept { return step_.load(std::memory_order_relaxed); }
  // How many steps it has begun.
  [[nodiscard]] uint64_t moves() const noexcept { return moves_.load(std::memory_order_relaxed); }

 private:
  std::atomic<tStep> step_{tStep::ended};
  std::atomic<uint64_t> moves_{0};
};

}  // namespace nTests

#endif
