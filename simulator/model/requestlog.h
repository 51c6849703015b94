/* The log of requests and file events on the machine's interfaces: a ring of the latest entries. */
#ifndef SIMULATOR_MODEL_REQUESTLOG_H
#define SIMULATOR_MODEL_REQUESTLOG_H

#include "simulator/model/host.h"

typedef struct tRequestLog {
  uint64_t nextSequence; /* 1 after clearing */
  tSimulatorLogEntry entries[SIMULATOR_LOG_CAPACITY];
} tRequestLog;

void logClear(tRequestLog* log);
/* Zeroes the entry except for the file and the event. */
void logStartEntry(tSimulatorLogEntry* entry, const tModelFile* file, tSimulatorEvent event);
/* Appends a copy of the entry with the next sequence number. The returned copy may be modified
 * while it is among the latest SIMULATOR_LOG_CAPACITY. */
tSimulatorLogEntry* logAppend(tRequestLog* log, const tSimulatorLogEntry* entry);
/* The number of stored entries whose sequence number is at least `fromSequence`. */
uint32_t logCountFrom(const tRequestLog* log, uint64_t fromSequence);
/* Copies the oldest `count` of them to `destination`, which need not be aligned. */
void logCopyFrom(const tRequestLog* log, uint64_t fromSequence, uint32_t count, void* destination);

#endif
