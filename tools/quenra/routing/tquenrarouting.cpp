#include "tools/quenra/routing/tquenrarouting.h"

namespace nCommandLine {

tQuenraRouting::tSession* tQuenraRouting::createSession(const char* device,
                                                        zoroco_Reallocate reallocate,
                                                        zoroco_DemotionCallback callback,
                                                        void* context,
                                                        zoerr_Status* status) noexcept {
  return zoroco_ra_quenra_createSessionWithDemotionFunc(device, reallocate, callback, context,
                                                        status);
}

void tQuenraRouting::destroySession(tSession* session) noexcept {
  zoroco_ra_quenra_destroySession(session);
}

void tQuenraRouting::calculateRoute(tSession* session, const char* seeds, const char* destinations,
                                    const char* modifiers, char** output,
                                    zoerr_Status* status) noexcept {
  zoroco_ra_quenra_calculateRoute(session, seeds, destinations, modifiers, output, status);
}

void tQuenraRouting::reserveRoute(tSession* session, uint32_t ticket, char** output,
                                  zoerr_Status* status) noexcept {
  zoroco_ra_quenra_reserveRoute(session, ticket, output, status);
}

void tQuenraRouting::programRoute(tSession* session, uint32_t ticket,
                                  zoerr_Status* status) noexcept {
  zoroco_ra_quenra_programRoute(session, ticket, status);
}

void tQuenraRouting::unprogramRoute(tSession* session, uint32_t ticket) noexcept {
  zoroco_ra_quenra_unprogramRoute(session, ticket, 0, 0);
}

void tQuenraRouting::unreserveRoute(tSession* session, uint32_t ticket) noexcept {
  zoroco_ra_quenra_unreserveRoute(session, ticket, 0, 0);
}

void tQuenraRouting::destroyRoute(tSession* session, uint32_t ticket) noexcept {
  zoroco_ra_quenra_destroyRoute(session, ticket, 0, 0);
}

void tQuenraRouting::beginExceptionalRouteDestruction(tSession* session, uint32_t ticket) noexcept {
  zoroco_ra_quenra_beginExceptionalRouteDestruction(session, ticket, 0, 0);
}

void tQuenraRouting::getRouteTerminalPath(tSession* session, uint32_t ticket, char** output,
                                          zoerr_Status* status) noexcept {
  zoroco_ra_quenra_getRouteTerminalPath(session, ticket, output, status);
}

tQuenraRouting::tIterator* tQuenraRouting::getAllTerminals(tSession* session,
                                                           zoerr_Status* status) noexcept {
  return zoroco_ra_quenra_getAllTerminals(session, status, 0);
}

void tQuenraRouting::next(tIterator* iterator, zoerr_Status* status) noexcept {
  zoroco_ra_quenra_TerminalIterator_next(iterator, status);
}

bool tQuenraRouting::isEnd(tIterator* iterator) noexcept {
  return zoroco_ra_quenra_TerminalIterator_isEnd(iterator);
}

const char* tQuenraRouting::getStringAttribute(tIterator* iterator, const char* name,
                                               zoerr_Status* status) noexcept {
  return zoroco_ra_quenra_TerminalIterator_getStringAttribute(iterator, name, status);
}

bool tQuenraRouting::getBoolAttribute(tIterator* iterator, const char* name,
                                      zoerr_Status* status) noexcept {
  return zoroco_ra_quenra_TerminalIterator_getBoolAttribute(iterator, name, status);
}

uint32_t tQuenraRouting::getU32Attribute(tIterator* iterator, const char* name,
                                         zoerr_Status* status) noexcept {
  return zoroco_ra_quenra_TerminalIterator_getU32Attribute(iterator, name, status);
}

void tQuenraRouting::destroyIterator(tIterator* iterator) noexcept {
  zoroco_ra_quenra_TerminalIterator_destroy(iterator);
}

}  // namespace nCommandLine
