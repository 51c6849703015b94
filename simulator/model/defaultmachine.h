/* The machine that a fresh simulator is: every attribute of the library has a value on it. */
#ifndef SIMULATOR_MODEL_DEFAULTMACHINE_H
#define SIMULATOR_MODEL_DEFAULTMACHINE_H

#include "simulator/model/model.h"

/* One controller, one Marten device, one device path. */
extern const tSimulatorPresence kDefaultPresence;

/* Sets table, version text and attributes; scripts, log and presence are left alone. */
void makeDefaultMachine(tModel* model);

#endif
