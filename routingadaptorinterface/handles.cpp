#include "routingadaptorinterface/handles.h"

#include "routingadaptorinterface/tlivehandles.h"
#include "zoapal/protons/startup/tneverdestroyed.h"
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

TerminalIteratorInterface* iteratorOf(zoroco_TerminalIterator* handle) noexcept {
  return reinterpret_cast<TerminalIteratorInterface*>(handle);
}

void require(bool isHandle) {
  if (!isHandle) {
    zoark::raise(nZOAPALS100::kInvalidParameter, kNoHandle);
  }
}

}  // namespace

zoroco_RoutingAdaptorSession* handleOf(std::unique_ptr<RoutingAdaptorSessionInterface> session) {
  liveHandles().add(session.get(), tHandleKind::session);
  return reinterpret_cast<zoroco_RoutingAdaptorSession*>(session.release());
}

zoroco_TerminalIterator* handleOf(std::unique_ptr<TerminalIteratorInterface> iterator,
                                  const zoroco_RoutingAdaptorSession* session) {
  liveHandles().add(iterator.get(), tHandleKind::iterator, session);
  return reinterpret_cast<zoroco_TerminalIterator*>(iterator.release());
}

std::unique_ptr<RoutingAdaptorSessionInterface> takeBack(
    zoroco_RoutingAdaptorSession* handle) noexcept {
  const bool wasLive = liveHandles().remove(handle, tHandleKind::session);
  return std::unique_ptr<RoutingAdaptorSessionInterface>(wasLive ? sessionOf(handle) : nullptr);
}

std::unique_ptr<TerminalIteratorInterface> takeBack(zoroco_TerminalIterator* handle) noexcept {
  const bool wasLive = liveHandles().remove(handle, tHandleKind::iterator);
  return std::unique_ptr<TerminalIteratorInterface>(wasLive ? iteratorOf(handle) : nullptr);
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
