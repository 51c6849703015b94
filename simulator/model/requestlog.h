/* The log of everything that came in on the machine's interfaces: a ring of the latest entries. */
#ifndef SIMULATOR_MODEL_REQUESTLOG_H
#define SIMULATOR_MODEL_REQUESTLOG_H

#include <stdint.h>

#include "simulator/control/controlprotocol.h"

typedef struct tRequestLog {
  uint64_t nextSequence; /* 1 when the log is empty */
  tSimulatorLogEntry entries[SIMULATOR_LOG_CAPACITY];
} tRequestLog;

void logClear(tRequestLog* log);
/* Keeps a copy of the entry under the next sequence number. The copy may be completed as long as it is
 * among the latest SIMULATOR_LOG_CAPACITY. */
tSimulatorLogEntry* logAppend(tRequestLog* log, const tSimulatorLogEntry* entry);
/* The number of entries kept whose sequence number is at least `fromSequence`. */
uint32_t logCountFrom(const tRequestLog* log, uint64_t fromSequence);
/* Copies the oldest `count` of them to `destination`, which need not be aligned. */
void logCopyFrom(const tRequestLog* log, uint64_t fromSequence, uint32_t count, void* destination);

#endif
