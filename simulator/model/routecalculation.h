/* REQUEST_CALCULATE_ROUTE. */
#ifndef SIMULATOR_MODEL_ROUTECALCULATION_H
#define SIMULATOR_MODEL_ROUTECALCULATION_H

#include "simulator/model/driverrequests.h"

tDriverOperation carryOutCalculateRoute;

/* Finds the routes that hold the destination of `wanted`. Writes at most `capacity` records to the
 * caller's address `to` and returns the number of conflicts. A capacity of 0 only counts them. */
uint32_t findConflicts(tModel* model, const tRoute* wanted, uint64_t to, uint32_t capacity,
                       bool* reachable);

#endif
