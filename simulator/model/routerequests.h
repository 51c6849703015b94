/* The requests of the trigger-routing interface, as the simulated router carries them out. */
#ifndef SIMULATOR_MODEL_ROUTEREQUESTS_H
#define SIMULATOR_MODEL_ROUTEREQUESTS_H

#include "simulator/model/driverrequests.h"

tDriverOperation carryOutCountTerminals;
tDriverOperation carryOutDestroyRoute;
tDriverOperation carryOutReserveRoute;
tDriverOperation carryOutProgramRoute;
tDriverOperation carryOutUnprogramRoute;
tDriverOperation carryOutUnreserveRoute;
tDriverOperation carryOutGetPath;
tDriverOperation carryOutGetTopographyName;
tDriverOperation carryOutResetTerminal;
tDriverOperation carryOutCalculateReset;

/* Takes its line away from a route that is reserved or programmed, and tells its session. False when
 * there is no such route, or it holds no line. */
bool demoteRoute(tModel* model, uint32_t ticket);

#endif
