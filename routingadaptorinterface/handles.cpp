#include "routingadaptorinterface/handles.h"

#include "zoarkra/failure.h"

namespace zoroco {
namespace {

constexpr nZOAPALS100::tSourceLocation kNoHandle{"routingadaptorinterface\\routingadaptorexports",
                                                 48, nZOAPALS100::kComponent,
                                                 zoark::kInvalidParameterConstant};

}  // namespace

zoroco_RoutingAdaptorSession* handleOf(
    std::unique_ptr<RoutingAdaptorSessionInterface> session) noexcept {
  return reinterpret_cast<zoroco_RoutingAdaptorSession*>(session.release());
}

zoroco_TerminalIterator* handleOf(std::unique_ptr<TerminalIteratorInterface> iterator) noexcept {
  return reinterpret_cast<zoroco_TerminalIterator*>(iterator.release());
}

RoutingAdaptorSessionInterface* sessionOf(zoroco_RoutingAdaptorSession* handle) noexcept {
  return reinterpret_cast<RoutingAdaptorSessionInterface*>(handle);
}

TerminalIteratorInterface* iteratorOf(zoroco_TerminalIterator* handle) noexcept {
  return reinterpret_cast<TerminalIteratorInterface*>(handle);
}

RoutingAdaptorSessionInterface& requireSession(zoroco_RoutingAdaptorSession* handle) {
  if (handle == nullptr) {
    zoark::raise(nZOAPALS100::kInvalidParameter, kNoHandle);
  }
  return *sessionOf(handle);
}

TerminalIteratorInterface& requireIterator(zoroco_TerminalIterator* handle) {
  if (handle == nullptr) {
    zoark::raise(nZOAPALS100::kInvalidParameter, kNoHandle);
  }
  return *iteratorOf(handle);
}

}  // namespace zoroco
