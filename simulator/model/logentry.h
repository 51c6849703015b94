/* Initialises entries of the request log. */
#ifndef SIMULATOR_MODEL_LOGENTRY_H
#define SIMULATOR_MODEL_LOGENTRY_H

#include "simulator/model/model.h"

/* Zeroes the entry except for the file and the event. */
void startLogEntry(tSimulatorLogEntry* entry, const tModelFile* file, tSimulatorEvent event);

#endif
