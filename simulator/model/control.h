/* The requests of the control interface, which configures the simulated machine. */
#ifndef SIMULATOR_MODEL_CONTROL_H
#define SIMULATOR_MODEL_CONTROL_H

#include "simulator/model/host.h"

/* Restores the default machine, with no scripts and an empty log, except for the presence of the
 * interfaces. */
void resetMachine(tModel* model);
tModelReply carryOutControlRequest(tModel* model, const tModelRequest* request);

#endif
