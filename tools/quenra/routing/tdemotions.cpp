#include "tools/quenra/routing/tdemotions.h"

namespace nCommandLine {

void tDemotions::add(int32_t reason) noexcept {
  {
    const std::scoped_lock lock(mutex_);
    if (count_ < kCapacity) {
      reasons_[(first_ + count_) % kCapacity] = reason;
      ++count_;
    }
  }
  added_.notify_one();
}

std::optional<int32_t> tDemotions::take(std::chrono::milliseconds time) {
  std::unique_lock lock(mutex_);
  if (!added_.wait_for(lock, time, [this] { return count_ > 0; })) {
    return std::nullopt;
  }
  const int32_t reason = reasons_[first_];
  first_ = (first_ + 1) % kCapacity;
  --count_;
  return reason;
}

}  // namespace nCommandLine
