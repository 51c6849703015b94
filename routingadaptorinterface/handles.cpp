#include "routingadaptorinterface/handles.h"

#include <algorithm>

#include "zoapal/protons/startup/processlifetime.h"
#include "zoarkra/failure.h"

namespace zoroco {
namespace {

using nQUENRA1400::nZOAPAL000::tGuard;
using nQUENRA1400::nZOAPAL000::tSharedGuard;

constexpr nZOAPALS100::tSourceLocation kNoHandle{"routingadaptorinterface\\routingadaptorexports",
                                                 48, nZOAPALS100::kComponent,
                                                 zoark::kInvalidParameterConstant};

constinit nQUENRA1400::nZOAPAL000::tNeverDestroyed<tLiveHandles> theLiveHandles;

tLiveHandles& liveHandles() noexcept {
  return theLiveHandles.get();
}

RoutingAdaptorSessionInterface* sessionOf(zoroco_RoutingAdaptorSession* handle) noexcept {
  return reinterpret_cast<RoutingAdaptorSessionInterface*>(handle);
}

bool isOutsideItsCallback(const void* session) noexcept {
  // The table holds sessions of this class only.
  return !static_cast<const zoark::ARKRoutingAdaptorSession*>(
              static_cast<const RoutingAdaptorSessionInterface*>(session))
              ->isInCallback();
}

TerminalIteratorInterface* iteratorOf(zoroco_TerminalIterator* handle) noexcept {
  return reinterpret_cast<TerminalIteratorInterface*>(handle);
}

void require(bool isHandle) {
  if (!isHandle) {
    zoark::raise(nZOAPALS100::kInvalidParameter, kNoHandle);
  }
}

}  // namespace

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
    // The table is never destroyed: its memory is released with the last handle.
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

zoroco_RoutingAdaptorSession* handleOf(std::unique_ptr<zoark::ARKRoutingAdaptorSession> session) {
  RoutingAdaptorSessionInterface* const handle = session.get();
  liveHandles().add(handle, tHandleKind::session);
  static_cast<void>(session.release());
  return reinterpret_cast<zoroco_RoutingAdaptorSession*>(handle);
}

zoroco_TerminalIterator* handleOf(std::unique_ptr<TerminalIteratorInterface> iterator,
                                  const zoroco_RoutingAdaptorSession* session) {
  liveHandles().add(iterator.get(), tHandleKind::iterator, session);
  return reinterpret_cast<zoroco_TerminalIterator*>(iterator.release());
}

std::unique_ptr<RoutingAdaptorSessionInterface> releaseHandle(
    zoroco_RoutingAdaptorSession* handle) noexcept {
  const bool isRemoved = liveHandles().remove(handle, tHandleKind::session, &isOutsideItsCallback);
  return std::unique_ptr<RoutingAdaptorSessionInterface>(isRemoved ? sessionOf(handle) : nullptr);
}

std::unique_ptr<TerminalIteratorInterface> releaseHandle(zoroco_TerminalIterator* handle) noexcept {
  const bool isRemoved = liveHandles().remove(handle, tHandleKind::iterator);
  return std::unique_ptr<TerminalIteratorInterface>(isRemoved ? iteratorOf(handle) : nullptr);
}

RoutingAdaptorSessionInterface& requireSession(zoroco_RoutingAdaptorSession* handle) {
  require(liveHandles().isLive(handle, tHandleKind::session));
  return *sessionOf(handle);
}

TerminalIteratorInterface& requireIterator(zoroco_TerminalIterator* handle) {
  require(liveHandles().isLive(handle, tHandleKind::iterator));
  return *iteratorOf(handle);
}

TerminalIteratorInterface& requireIteratorOfSession(zoroco_TerminalIterator* handle) {
  require(liveHandles().isOwnerLive(handle));
  return *iteratorOf(handle);
}

}  // namespace zoroco
