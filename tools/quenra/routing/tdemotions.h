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

// Queue of demotions from the session's callback thread to the thread that prints them.
class tDemotions {
 public:
  // Demotions are rare. A full queue drops further ones.
  static constexpr size_t kCapacity = 64;

  // Allocates nothing: the callback cannot report a failure to the library.
  void add(int32_t reason) noexcept;
  // Removes and returns the oldest demotion; empty if none arrives within the time.
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
