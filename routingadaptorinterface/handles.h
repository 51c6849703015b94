#ifndef ROUTINGADAPTORINTERFACE_HANDLES_H
#define ROUTINGADAPTORINTERFACE_HANDLES_H

#include <memory>

#include "quenra_routing.h"
#include "zoarkra/arkroutingadaptorsession.h"

namespace zoroco {

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
[[nodiscard]] std::unique_ptr<RoutingAdaptorSessionInterface> takeBack(
    zoroco_RoutingAdaptorSession* handle) noexcept;
[[nodiscard]] std::unique_ptr<TerminalIteratorInterface> takeBack(
    zoroco_TerminalIterator* handle) noexcept;

// The object of a handle. An invalid handle throws zoerr::Exception with kInvalidParameter.
[[nodiscard]] RoutingAdaptorSessionInterface& requireSession(zoroco_RoutingAdaptorSession* handle);
[[nodiscard]] TerminalIteratorInterface& requireIterator(zoroco_TerminalIterator* handle);
// The same for an operation that needs the driver: the iterator's session must be live as well.
[[nodiscard]] TerminalIteratorInterface& requireIteratorOfSession(zoroco_TerminalIterator* handle);

}  // namespace zoroco

#endif
