/* REQUEST_CALCULATE_ROUTE. */
#ifndef SIMULATOR_MODEL_ROUTECALCULATION_H
#define SIMULATOR_MODEL_ROUTECALCULATION_H

#include "simulator/model/driverrequests.h"

tDriverOperation carryOutCalculateRoute;

/* The routes of others that keep a route from its destination. At most `capacity` are written;
 * returns how many there are. `to` is the address of the caller's records; 0: they are only counted. */
uint32_t findConflicts(tModel* model, const tRoute* wanted, uint64_t to, uint32_t capacity,
                       bool* reachable);

#endif
