#include "simulator/model/requestlog.h"

#include "simulator/model/bytes.h"

static uint32_t slotOf(uint64_t sequence) {
  return (uint32_t)((sequence - 1) % SIMULATOR_LOG_CAPACITY);
}

static uint64_t oldestKept(const tRequestLog* log) {
  return log->nextSequence > SIMULATOR_LOG_CAPACITY ? log->nextSequence - SIMULATOR_LOG_CAPACITY
                                                    : 1;
}

static uint64_t firstKeptFrom(const tRequestLog* log, uint64_t fromSequence) {
  const uint64_t oldest = oldestKept(log);
  return fromSequence > oldest ? fromSequence : oldest;
}

void logClear(tRequestLog* log) {
  log->nextSequence = 1;
}

void logStartEntry(tSimulatorLogEntry* entry, const tModelFile* file, tSimulatorEvent event) {
  fillWithZeros(entry, sizeof(*entry));
  entry->process = file->process;
  entry->file = file->file;
  entry->event = event;
  entry->interfaceKind = file->interfaceKind;
}

tSimulatorLogEntry* logAppend(tRequestLog* log, const tSimulatorLogEntry* entry) {
  tSimulatorLogEntry* slot = &log->entries[slotOf(log->nextSequence)];
  *slot = *entry;
  slot->sequence = log->nextSequence;
  ++log->nextSequence;
  return slot;
}

uint32_t logCountFrom(const tRequestLog* log, uint64_t fromSequence) {
  const uint64_t first = firstKeptFrom(log, fromSequence);
  return first < log->nextSequence ? (uint32_t)(log->nextSequence - first) : 0;
}

void logCopyFrom(const tRequestLog* log, uint64_t fromSequence, uint32_t count, void* destination) {
  const uint64_t first = firstKeptFrom(log, fromSequence);
  uint8_t* to = destination;
  for (uint32_t i = 0; i < count; ++i) {
    copyBytes(to, &log->entries[slotOf(first + i)], sizeof(tSimulatorLogEntry));
    to += sizeof(tSimulatorLogEntry);
  }
}
