#include "routingadaptorinterface/tlivehandles.h"

#include <algorithm>

namespace zoroco {

using nQUENRA1400::nZOAPAL000::tGuard;
using nQUENRA1400::nZOAPAL000::tSharedGuard;

const tLiveHandles::tEntry* tLiveHandles::find(const void* handle,
                                               tHandleKind kind) const noexcept {
  const auto found = std::find_if(entries_.begin(), entries_.end(), [=](const tEntry& entry) {
    return entry.handle == handle && entry.kind == kind;
  });
  return found == entries_.end() ? nullptr : &*found;
}

void tLiveHandles::add(const void* handle, tHandleKind kind, const void* owner) {
  const tGuard guard(lock_);
  const tEntry* const session = find(owner, tHandleKind::session);
  entries_.push_back({handle, kind, lastNumber_ + 1, session == nullptr ? 0 : session->number});
  ++lastNumber_;
}

bool tLiveHandles::remove(const void* handle, tHandleKind kind, tCondition condition) noexcept {
  const tGuard guard(lock_);
  const tEntry* const entry = find(handle, kind);
  if (entry == nullptr || (condition != nullptr && !condition(handle))) {
    return false;
  }
  entries_.erase(entries_.begin() + (entry - entries_.data()));
  if (entries_.empty()) {
    // The table is never destroyed: the last handle takes the memory with it.
    std::vector<tEntry>().swap(entries_);
  }
  return true;
}

bool tLiveHandles::isLive(const void* handle, tHandleKind kind) noexcept {
  const tSharedGuard guard(lock_);
  return find(handle, kind) != nullptr;
}

bool tLiveHandles::isOwnerLive(const void* handle) noexcept {
  const tSharedGuard guard(lock_);
  const tEntry* const iterator = find(handle, tHandleKind::iterator);
  return iterator != nullptr &&
         std::any_of(entries_.begin(), entries_.end(),
                     [iterator](const tEntry& entry) { return entry.number == iterator->owner; });
}

}  // namespace zoroco
