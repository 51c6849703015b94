#include "tools/quenra/routing/tdemotions.h"

namespace nCommandLine {

void tDemotions::add(int32_t reason) {
  {
    const std::scoped_lock lock(mutex_);
    reasons_.push(reason);
  }
  added_.notify_one();
}

std::optional<int32_t> tDemotions::take(std::chrono::milliseconds time) {
  std::unique_lock lock(mutex_);
  if (!added_.wait_for(lock, time, [this] { return !reasons_.empty(); })) {
    return std::nullopt;
  }
  const int32_t reason = reasons_.front();
  reasons_.pop();
  return reason;
}

}  // namespace nCommandLine
