#include <memory>

#include "quenra_routing.h"
#include "routingadaptorinterface/clientstatus.h"
#include "routingadaptorinterface/handles.h"
#include "zoarkra/arkroutingadaptorsession.h"

namespace {

using zoroco::handleOf;
using zoroco::releaseHandle;
using zoroco::requireIterator;
using zoroco::requireIteratorOfSession;
using zoroco::requireSession;
using zoroco::runSilently;
using zoroco::runWithoutThrowing;
using tSession = zoroco::RoutingAdaptorSessionInterface;
using tIterator = zoroco::TerminalIteratorInterface;

// The result of an export that returns nothing.
constexpr bool kNothing = false;

// Owns a session until its handle is the client's.
struct tDestroySession {
  void operator()(zoroco_RoutingAdaptorSession* session) const noexcept {
    zoroco_ra_quenra_destroySession(session);
  }
};
using tOwnedSession = std::unique_ptr<zoroco_RoutingAdaptorSession, tDestroySession>;

// The common part of exports on a session: the status, and the session. The operation is
// (session, status) -> result.
template <class Result, class Operation>
Result runOnSession(zoroco_RoutingAdaptorSession* session, zoerr_Status* status, Result neutral,
                    Operation operation) noexcept {
  return runWithoutThrowing(
      status, neutral, [&](zoerr::Status& own) { return operation(requireSession(session), own); });
}

template <class Result, class Operation>
Result runOnIterator(zoroco_TerminalIterator* iterator, zoerr_Status* status, Result neutral,
                     Operation operation) noexcept {
  return runWithoutThrowing(status, neutral, [&](zoerr::Status& own) {
    return operation(requireIterator(iterator), own);
  });
}

// One step of the teardown of a route.
template <class Step>
void tearDown(zoroco_RoutingAdaptorSession* session, Step step) noexcept {
  runSilently(kNothing, [&] {
    step(requireSession(session));
    return kNothing;
  });
}

}  // namespace

uint32_t zoroco_ra_quenra_getAPIVersion() {
  return ZOROCO_API_VERSION;
}

zoroco_RoutingAdaptorSession* zoroco_ra_quenra_createSession(const char* deviceInterfaceName,
                                                             zoroco_Reallocate reallocate,
                                                             zoerr_Status* status) {
  return zoroco_ra_quenra_createSessionWithDemotionFunc(deviceInterfaceName, reallocate, nullptr,
                                                        nullptr, status);
}

zoroco_RoutingAdaptorSession* zoroco_ra_quenra_createSessionWithDemotionFunc(
    const char* deviceInterfaceName, zoroco_Reallocate reallocate, zoroco_DemotionCallback callback,
    void* context, zoerr_Status* status) {
  tOwnedSession session = runWithoutThrowing(status, tOwnedSession(), [&](zoerr::Status& own) {
    return tOwnedSession(handleOf(std::make_unique<zoark::ARKRoutingAdaptorSession>(
        zoark::makeRoutingDevice(), deviceInterfaceName,
        zoark::tClientFunctions{reallocate, callback, context}, own)));
  });
  return session.release();
}

void zoroco_ra_quenra_destroySession(zoroco_RoutingAdaptorSession* session) {
  const std::unique_ptr<tSession> destroyed = releaseHandle(session);
}

void zoroco_ra_quenra_getHandledConstraints(zoroco_RoutingAdaptorSession* session, char** output,
                                            zoerr_Status* status) {
  runOnSession(session, status, kNothing, [&](tSession& on, zoerr::Status& own) {
    on.getHandledConstraints(output, own);
    return kNothing;
  });
}

uint32_t zoroco_ra_quenra_calculateRoute(zoroco_RoutingAdaptorSession* session, const char* seeds,
                                         const char* destinations, const char* modifiers,
                                         char** output, zoerr_Status* status) {
  return runOnSession(session, status, 0u, [&](tSession& on, zoerr::Status& own) {
    return on.calculateRoute({seeds, destinations, modifiers}, output, own);
  });
}

void zoroco_ra_quenra_reserveRoute(zoroco_RoutingAdaptorSession* session, uint32_t ticket,
                                   char** output, zoerr_Status* status) {
  runOnSession(session, status, kNothing, [&](tSession& on, zoerr::Status& own) {
    on.reserveRoute(ticket, output, own);
    return kNothing;
  });
}

void zoroco_ra_quenra_programRoute(zoroco_RoutingAdaptorSession* session, uint32_t ticket,
                                   zoerr_Status* status) {
  runOnSession(session, status, kNothing, [&](tSession& on, zoerr::Status& own) {
    on.programRoute(ticket, own);
    return kNothing;
  });
}

void zoroco_ra_quenra_unprogramRoute(zoroco_RoutingAdaptorSession* session, uint32_t ticket,
                                     uint64_t reserved, uint64_t reservedToo) {
  tearDown(session, [=](tSession& on) { on.unprogramRoute(ticket, reserved, reservedToo); });
}

void zoroco_ra_quenra_unreserveRoute(zoroco_RoutingAdaptorSession* session, uint32_t ticket,
                                     uint64_t reserved, uint64_t reservedToo) {
  tearDown(session, [=](tSession& on) { on.unreserveRoute(ticket, reserved, reservedToo); });
}

void zoroco_ra_quenra_destroyRoute(zoroco_RoutingAdaptorSession* session, uint32_t ticket,
                                   uint64_t reserved, uint64_t reservedToo) {
  tearDown(session, [=](tSession& on) { on.destroyRoute(ticket, reserved, reservedToo); });
}

void zoroco_ra_quenra_beginExceptionalRouteDestruction(zoroco_RoutingAdaptorSession* session,
                                                       uint32_t ticket, uint64_t reserved,
                                                       uint64_t reservedToo) {
  tearDown(session, [=](tSession& on) {
    on.beginExceptionalRouteDestruction(ticket, reserved, reservedToo);
  });
}

void zoroco_ra_quenra_getRouteTerminalPath(zoroco_RoutingAdaptorSession* session, uint32_t ticket,
                                           char** output, zoerr_Status* status) {
  runOnSession(session, status, kNothing, [&](tSession& on, zoerr::Status& own) {
    on.getRouteTerminalPath(ticket, output, own);
    return kNothing;
  });
}

zoroco_TerminalIterator* zoroco_ra_quenra_getAllTerminals(zoroco_RoutingAdaptorSession* session,
                                                          zoerr_Status* status, uint64_t reserved) {
  constexpr zoroco_TerminalIterator* kNoIterator = nullptr;
  return runOnSession(session, status, kNoIterator, [&](tSession& on, zoerr::Status& own) {
    return handleOf(on.getAllTerminals(own, reserved), session);
  });
}

void zoroco_ra_quenra_TerminalIterator_next(zoroco_TerminalIterator* iterator,
                                            zoerr_Status* status) {
  runOnIterator(iterator, status, kNothing, [](tIterator& on, zoerr::Status& own) {
    on.next(own);
    return kNothing;
  });
}

bool zoroco_ra_quenra_TerminalIterator_isEnd(zoroco_TerminalIterator* iterator) {
  // A walk that fails ends.
  return runSilently(true, [iterator] { return requireIterator(iterator).isEnd(); });
}

const char* zoroco_ra_quenra_TerminalIterator_getStringAttribute(zoroco_TerminalIterator* iterator,
                                                                 const char* name,
                                                                 zoerr_Status* status) {
  constexpr const char* kNoText = nullptr;
  return runOnIterator(iterator, status, kNoText, [name](tIterator& on, zoerr::Status& own) {
    return on.getStringAttribute(name, own);
  });
}

bool zoroco_ra_quenra_TerminalIterator_getBoolAttribute(zoroco_TerminalIterator* iterator,
                                                        const char* name, zoerr_Status* status) {
  return runOnIterator(iterator, status, false, [name](tIterator& on, zoerr::Status& own) {
    return on.getBoolAttribute(name, own);
  });
}

uint32_t zoroco_ra_quenra_TerminalIterator_getU32Attribute(zoroco_TerminalIterator* iterator,
                                                           const char* name, zoerr_Status* status) {
  return runOnIterator(iterator, status, 0u, [name](tIterator& on, zoerr::Status& own) {
    return on.getU32Attribute(name, own);
  });
}

void zoroco_ra_quenra_TerminalIterator_resetTerminal(zoroco_TerminalIterator* iterator,
                                                     const char* mode, zoerr_Status* status) {
  runWithoutThrowing(status, kNothing, [&](zoerr::Status& own) {
    requireIteratorOfSession(iterator).resetTerminal(mode, own);
    return kNothing;
  });
}

uint32_t zoroco_ra_quenra_TerminalIterator_calculateResetTerminal(
    zoroco_RoutingAdaptorSession* session, zoroco_TerminalIterator* iterator, const char* mode,
    zoerr_Status* status) {
  return runOnSession(session, status, 0u, [&](tSession& on, zoerr::Status& own) {
    return on.calculateResetTerminal(requireIterator(iterator), mode, own);
  });
}

void zoroco_ra_quenra_TerminalIterator_destroy(zoroco_TerminalIterator* iterator) {
  const std::unique_ptr<tIterator> destroyed = releaseHandle(iterator);
}
