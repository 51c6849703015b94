#ifndef ROUTINGADAPTORINTERFACE_TLIVEHANDLES_H
#define ROUTINGADAPTORINTERFACE_TLIVEHANDLES_H

#include <cstdint>
#include <vector>

#include "zoapal/protons/synchronization/windowsu/tslimlock.h"

namespace zoroco {

enum class tHandleKind : uint8_t {
  session,
  iterator
};

// The handles that clients have, so that one that is destroyed, or was never given, is not followed.
// A handle that is given again after its end is told from the one before. Any thread.
class tLiveHandles {
 public:
  constexpr tLiveHandles() noexcept = default;
  tLiveHandles(const tLiveHandles&) = delete;
  tLiveHandles& operator=(const tLiveHandles&) = delete;

  // `owner` is a live session, or null. Throws std::bad_alloc.
  void add(const void* handle, tHandleKind kind, const void* owner = nullptr);
  // False when there is no such handle.
  bool remove(const void* handle, tHandleKind kind) noexcept;

  [[nodiscard]] bool isLive(const void* handle, tHandleKind kind) noexcept;
  // Whether the handle and its owner are.
  [[nodiscard]] bool isOwnerLive(const void* handle) noexcept;

 private:
  struct tEntry {
    const void* handle;
    tHandleKind kind;
    uint64_t number;
    uint64_t owner;  // its number
  };

  // With the lock held; null when there is none.
  [[nodiscard]] const tEntry* find(const void* handle, tHandleKind kind) const noexcept;

  nQUENRA1400::nZOAPAL000::tSlimLock lock_;
  std::vector<tEntry> entries_;
  uint64_t lastNumber_ = 0;
};

}  // namespace zoroco

#endif
