#include "simulator/model/logentry.h"

#include "simulator/model/bytes.h"

void startLogEntry(tSimulatorLogEntry* entry, const tModelFile* file, tSimulatorEvent event) {
  fillWithZeros(entry, sizeof(*entry));
  entry->process = file->process;
  entry->file = file->file;
  entry->event = event;
  entry->interfaceKind = file->interfaceKind;
}
