#include "routingadaptorinterface/handles.h"

#include "routingadaptorinterface/tlivehandles.h"
#include "zoapal/protons/startup/processlifetime.h"
#include "zoarkra/failure.h"

namespace zoroco {
namespace {

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

std::unique_ptr<RoutingAdaptorSessionInterface> takeBack(
    zoroco_RoutingAdaptorSession* handle) noexcept {
  const bool isRemoved = liveHandles().remove(handle, tHandleKind::session, &isOutsideItsCallback);
  return std::unique_ptr<RoutingAdaptorSessionInterface>(isRemoved ? sessionOf(handle) : nullptr);
}

std::unique_ptr<TerminalIteratorInterface> takeBack(zoroco_TerminalIterator* handle) noexcept {
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
