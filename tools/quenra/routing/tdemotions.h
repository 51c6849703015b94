#ifndef TOOLS_QUENRA_ROUTING_TDEMOTIONS_H
#define TOOLS_QUENRA_ROUTING_TDEMOTIONS_H

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <queue>

namespace nCommandLine {

// What a session's thread is told of demotions, for the thread that shows them.
class tDemotions {
 public:
  void add(int32_t reason);
  // The next one not yet taken; nothing when none comes within the time.
  [[nodiscard]] std::optional<int32_t> take(std::chrono::milliseconds time);

 private:
  std::mutex mutex_;
  std::condition_variable added_;
  std::queue<int32_t> reasons_;
};

}  // namespace nCommandLine

#endif
