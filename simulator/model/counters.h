/* The counts of all parts of the model, as the control interface tells them. */
#ifndef SIMULATOR_MODEL_COUNTERS_H
#define SIMULATOR_MODEL_COUNTERS_H

#include "simulator/model/model.h"

void countersOf(const tModel* model, tSimulatorCounters* counters);

#endif
