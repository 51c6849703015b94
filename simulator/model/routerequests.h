/* The simulated router's implementation of the requests of the trigger-routing interface. */
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

/* Demotes a reserved or programmed route: removes its line and notifies its session. False if the
 * route does not exist or holds no line. */
bool demoteRoute(tModel* model, uint32_t ticket);

#endif
