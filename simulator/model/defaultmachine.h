/* The default machine. Every attribute of the library has a value on it. */
#ifndef SIMULATOR_MODEL_DEFAULTMACHINE_H
#define SIMULATOR_MODEL_DEFAULTMACHINE_H

#include "simulator/model/model.h"

/* One controller, one Marten device, one device path. */
extern const tSimulatorPresence kDefaultPresence;

/* Restores the default machine, without scripts, pending requests, notifications and routes, and
 * with an empty log. Does not change the presence of the interfaces. */
void resetMachine(tModel* model);

#endif
