/* Collects the counts of all parts of the model for the control interface. */
#ifndef SIMULATOR_MODEL_COUNTERS_H
#define SIMULATOR_MODEL_COUNTERS_H

#include "simulator/model/model.h"

void countersOf(const tModel* model, tSimulatorCounters* counters);

#endif
