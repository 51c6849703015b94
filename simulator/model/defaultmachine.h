/* The default machine. Every attribute of the library has a value on it. */
#ifndef SIMULATOR_MODEL_DEFAULTMACHINE_H
#define SIMULATOR_MODEL_DEFAULTMACHINE_H

#include "simulator/model/model.h"

/* One controller, one Marten device, one device path. */
extern const tSimulatorPresence kDefaultPresence;

/* Sets table, version text and attributes; does not change scripts, log and presence. */
void makeDefaultMachine(tModel* model);

#endif
