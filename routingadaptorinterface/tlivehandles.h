#ifndef ROUTINGADAPTORINTERFACE_TLIVEHANDLES_H
#define ROUTINGADAPTORINTERFACE_TLIVEHANDLES_H

#include <cstdint>
#include <vector>

#include "zoapal/protons/synchronization/windowsu/locks.h"

namespace zoroco {

enum class tHandleKind : uint8_t {
  session,
  iterator
};

// The handles that clients own, so that a destroyed or foreign handle is not dereferenced. A handle
// whose value was used before is distinguished from the earlier one. Any thread.
class tLiveHandles {
 public:
  constexpr tLiveHandles() noexcept = default;
  tLiveHandles(const tLiveHandles&) = delete;
  tLiveHandles& operator=(const tLiveHandles&) = delete;

  // `owner` is a live session, or null. Throws std::bad_alloc.
  void add(const void* handle, tHandleKind kind, const void* owner = nullptr);
  // A condition on a live handle. Runs with the lock held, so that no thread destroys the object.
  using tCondition = bool (*)(const void* handle) noexcept;

  // False, with nothing removed, if the handle is not live or does not fulfil the condition.
  bool remove(const void* handle, tHandleKind kind, tCondition condition = nullptr) noexcept;

  [[nodiscard]] bool isLive(const void* handle, tHandleKind kind) noexcept;
  // True if the handle and its owner are live.
  [[nodiscard]] bool isOwnerLive(const void* handle) noexcept;

 private:
  struct tEntry {
    const void* handle;
    tHandleKind kind;
    uint64_t number;
    uint64_t owner;  // its number
  };

  // With the lock held. Null if the handle is not live.
  [[nodiscard]] const tEntry* find(const void* handle, tHandleKind kind) const noexcept;

  nQUENRA1400::nZOAPAL000::tSlimLock lock_;
  std::vector<tEntry> entries_;
  uint64_t lastNumber_ = 0;
};

}  // namespace zoroco

#endif
