#ifndef ROUTINGADAPTORINTERFACE_HANDLES_H
#define ROUTINGADAPTORINTERFACE_HANDLES_H

#include <memory>

#include "quenra_routing.h"
#include "zoarkra/routingadaptorsessioninterface.h"

namespace zoroco {

// A handle is the address of the interface part of a session or an iterator, which the client owns.

[[nodiscard]] zoroco_RoutingAdaptorSession* handleOf(
    std::unique_ptr<RoutingAdaptorSessionInterface> session) noexcept;
[[nodiscard]] zoroco_TerminalIterator* handleOf(
    std::unique_ptr<TerminalIteratorInterface> iterator) noexcept;

// What is behind a handle; null behind null.
[[nodiscard]] RoutingAdaptorSessionInterface* sessionOf(
    zoroco_RoutingAdaptorSession* handle) noexcept;
[[nodiscard]] TerminalIteratorInterface* iteratorOf(zoroco_TerminalIterator* handle) noexcept;

// The same; a null handle throws zoerr::Exception with kInvalidParameter.
[[nodiscard]] RoutingAdaptorSessionInterface& requireSession(zoroco_RoutingAdaptorSession* handle);
[[nodiscard]] TerminalIteratorInterface& requireIterator(zoroco_TerminalIterator* handle);

}  // namespace zoroco

#endif
