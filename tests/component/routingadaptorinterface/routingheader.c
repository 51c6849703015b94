/* The routing header and the driver's side of it are C11: this file compiles without any other header
 * before. */
#include "quenra_routing.h"

#include "protocol/routingrequests.h"
#include "tests/component/routingadaptorinterface/routingheader.h"

_Static_assert(sizeof(zoerr_Status) == 24, "");
_Static_assert(offsetof(zoerr_Status, code) == 0, "");
_Static_assert(offsetof(zoerr_Status, capacity) == 4, "");
_Static_assert(offsetof(zoerr_Status, reallocate) == 8, "");
_Static_assert(offsetof(zoerr_Status, description) == 16, "");

/* The numbers are part of the interface; tests name them by symbols. */
_Static_assert(QUENRA_STATUS_BAD_SELECTOR == -50003, "");
_Static_assert(QUENRA_STATUS_MEMORY_FULL == -52000, "");
_Static_assert(QUENRA_STATUS_REQUEST_NOT_SUPPORTED == -52002, "");
_Static_assert(QUENRA_STATUS_INVALID_PARAMETER == -52005, "");
_Static_assert(QUENRA_STATUS_NOT_FOUND == -52006, "");
_Static_assert(QUENRA_STATUS_INTERNAL_ERROR == -52008, "");
_Static_assert(QUENRA_STATUS_ACCESS_DENIED == -52009, "");
_Static_assert(QUENRA_STATUS_PATH_TOO_LONG == -52019, "");
_Static_assert(QUENRA_STATUS_ROUTE_CONFLICT == -89137, "");

#define ENTRY(name) \
  { #name, (void (*)(void))(name) }

const tExport kExportsOfC[EXPORTS] = {
    ENTRY(zoroco_ra_quenra_getAPIVersion),
    ENTRY(zoroco_ra_quenra_createSession),
    ENTRY(zoroco_ra_quenra_createSessionWithDemotionFunc),
    ENTRY(zoroco_ra_quenra_destroySession),
    ENTRY(zoroco_ra_quenra_getHandledConstraints),
    ENTRY(zoroco_ra_quenra_calculateRoute),
    ENTRY(zoroco_ra_quenra_reserveRoute),
    ENTRY(zoroco_ra_quenra_programRoute),
    ENTRY(zoroco_ra_quenra_unprogramRoute),
    ENTRY(zoroco_ra_quenra_unreserveRoute),
    ENTRY(zoroco_ra_quenra_beginExceptionalRouteDestruction),
    ENTRY(zoroco_ra_quenra_destroyRoute),
    ENTRY(zoroco_ra_quenra_getRouteTerminalPath),
    ENTRY(zoroco_ra_quenra_getAllTerminals),
    ENTRY(zoroco_ra_quenra_TerminalIterator_next),
    ENTRY(zoroco_ra_quenra_TerminalIterator_isEnd),
    ENTRY(zoroco_ra_quenra_TerminalIterator_getStringAttribute),
    ENTRY(zoroco_ra_quenra_TerminalIterator_getBoolAttribute),
    ENTRY(zoroco_ra_quenra_TerminalIterator_getU32Attribute),
    ENTRY(zoroco_ra_quenra_TerminalIterator_resetTerminal),
    ENTRY(zoroco_ra_quenra_TerminalIterator_calculateResetTerminal),
    ENTRY(zoroco_ra_quenra_TerminalIterator_destroy),
};

const tStatusFunctions kStatusFunctionsOfC = {zoerr_Status_initial, zoerr_Status_reallocate,
                                              zoerr_Status_release};
