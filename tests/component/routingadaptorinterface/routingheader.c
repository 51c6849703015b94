/* The routing header and the driver's side of it are C11: this file compiles without any other header
 * before. */
#include "quenra_routing.h"

#include "protocol/routingrecords.h"
#include "protocol/routingrequests.h"
#include "tests/component/routingadaptorinterface/routingheader.h"

_Static_assert(sizeof(zoerr_Status) == 24, "");
_Static_assert(offsetof(zoerr_Status, code) == 0, "");
_Static_assert(offsetof(zoerr_Status, capacity) == 4, "");
_Static_assert(offsetof(zoerr_Status, reallocate) == 8, "");
_Static_assert(offsetof(zoerr_Status, description) == 16, "");

const tStatusFunctions kStatusFunctionsOfC = {zoerr_Status_initial, zoerr_Status_reallocate,
                                              zoerr_Status_release};
