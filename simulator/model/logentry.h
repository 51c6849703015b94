/* How an entry of the request log begins. */
#ifndef SIMULATOR_MODEL_LOGENTRY_H
#define SIMULATOR_MODEL_LOGENTRY_H

#include "simulator/model/model.h"

/* Zeros but for the file and the event. */
void startLogEntry(tSimulatorLogEntry* entry, const tModelFile* file, tSimulatorEvent event);

#endif
