#ifndef TOOLS_QUENRA_ROUTING_TDEMOTIONS_H
#define TOOLS_QUENRA_ROUTING_TDEMOTIONS_H

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>

namespace nCommandLine {

// What a session's thread is told of demotions, for the thread that shows them.
class tDemotions {
 public:
  // A route is demoted once in a while: what does not fit is dropped.
  static constexpr size_t kCapacity = 64;

  // Needs no memory: whoever tells of a demotion cannot be told of a failure.
  void add(int32_t reason) noexcept;
  // The next one not yet taken; nothing when none comes within the time.
  [[nodiscard]] std::optional<int32_t> take(std::chrono::milliseconds time);

 private:
  std::mutex mutex_;
  std::condition_variable added_;
  std::array<int32_t, kCapacity> reasons_{};
  size_t first_ = 0;
  size_t count_ = 0;
};

}  // namespace nCommandLine

#endif
