#ifndef ROUTINGADAPTORINTERFACE_HANDLES_H
#define ROUTINGADAPTORINTERFACE_HANDLES_H

#include <memory>

#include "quenra_routing.h"
#include "zoarkra/routingadaptorsessioninterface.h"

namespace zoroco {

// A handle is the address of the interface part of a session or an iterator, which the client owns.
// Handles that are destroyed, or that nobody was given, are not followed.

// Throw std::bad_alloc; what the handle was to be of is destroyed then.
[[nodiscard]] zoroco_RoutingAdaptorSession* handleOf(
    std::unique_ptr<RoutingAdaptorSessionInterface> session);
[[nodiscard]] zoroco_TerminalIterator* handleOf(std::unique_ptr<TerminalIteratorInterface> iterator,
                                                const zoroco_RoutingAdaptorSession* session);

// What is behind a handle, which ends; null behind one that is none.
[[nodiscard]] std::unique_ptr<RoutingAdaptorSessionInterface> takeBack(
    zoroco_RoutingAdaptorSession* handle) noexcept;
[[nodiscard]] std::unique_ptr<TerminalIteratorInterface> takeBack(
    zoroco_TerminalIterator* handle) noexcept;

// What is behind a handle; one that is none throws zoerr::Exception with kInvalidParameter.
[[nodiscard]] RoutingAdaptorSessionInterface& requireSession(zoroco_RoutingAdaptorSession* handle);
[[nodiscard]] TerminalIteratorInterface& requireIterator(zoroco_TerminalIterator* handle);
// The same, of an iterator whose session is there as well: to ask the driver.
[[nodiscard]] TerminalIteratorInterface& requireIteratorOfSession(zoroco_TerminalIterator* handle);

}  // namespace zoroco

#endif
