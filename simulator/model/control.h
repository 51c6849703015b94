/* The requests of the control interface, through which the simulated machine is set up. */
#ifndef SIMULATOR_MODEL_CONTROL_H
#define SIMULATOR_MODEL_CONTROL_H

#include "simulator/model/model.h"

/* Everything about the default machine: table, text, attributes; no scripts, an empty log. Leaves
 * the presence alone. */
void resetMachine(tModel* model);
tModelReply carryOutControlRequest(tModel* model, const tModelRequest* request);

#endif
