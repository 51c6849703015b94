#ifndef ROUTINGADAPTORINTERFACE_HANDLES_H
#define ROUTINGADAPTORINTERFACE_HANDLES_H

#include <cstdint>
#include <memory>
#include <vector>

#include "quenra_routing.h"
#include "zoapal/protons/synchronization/windowsu/locks.h"
#include "zoarkra/arkroutingadaptorsession.h"

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

  // A condition on a live handle. Runs with the lock held, so that no thread destroys the object.
  using tCondition = bool (*)(const void* handle) noexcept;

  // `owner` is a live session, or null. Throws std::bad_alloc.
  void add(const void* handle, tHandleKind kind, const void* owner = nullptr);

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

// A handle is the address of the interface part of a session or an iterator, which the client owns.
// Destroyed and foreign handles are not dereferenced; the storage of a destroyed object is quarantined,
// so that its address does not soon become another handle.

// Transfer ownership to the client. Throw std::bad_alloc, and then destroy the object.
[[nodiscard]] zoroco_RoutingAdaptorSession* handleOf(
    std::unique_ptr<zoark::ARKRoutingAdaptorSession> session);
[[nodiscard]] zoroco_TerminalIterator* handleOf(std::unique_ptr<TerminalIteratorInterface> iterator,
                                                const zoroco_RoutingAdaptorSession* session);

// Invalidate the handle and return ownership of its object; null if invalid. A session's handle stays
// valid inside the session's callback, which its destruction would wait for: the result is null.
[[nodiscard]] std::unique_ptr<RoutingAdaptorSessionInterface> releaseHandle(
    zoroco_RoutingAdaptorSession* handle) noexcept;
[[nodiscard]] std::unique_ptr<TerminalIteratorInterface> releaseHandle(
    zoroco_TerminalIterator* handle) noexcept;

// The object of a handle. An invalid handle throws zoerr::Exception with kInvalidParameter.
[[nodiscard]] RoutingAdaptorSessionInterface& requireSession(zoroco_RoutingAdaptorSession* handle);
[[nodiscard]] TerminalIteratorInterface& requireIterator(zoroco_TerminalIterator* handle);
// The same for an operation that needs the driver: the iterator's session must be live as well.
[[nodiscard]] TerminalIteratorInterface& requireIteratorOfSession(zoroco_TerminalIterator* handle);

}  // namespace zoroco

#endif
