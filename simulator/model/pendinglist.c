#include "simulator/model/pendinglist.h"

void pendingClear(tPendingList* pending) {
  pending->acceptance = kSimulatorAcceptAtOnce;
  pending->nextHandle = 1;
  pending->count = 0;
}

bool pendingAdd(tPendingList* pending, const tPendingEntry* entry) {
  if (pending->count == SIMULATOR_PENDING_CAPACITY) {
    return false;
  }
  pending->entries[pending->count] = *entry;
  ++pending->count;
  ++pending->begun;
  return true;
}

tPendingEntry pendingRemove(tPendingList* pending, uint32_t index) {
  const tPendingEntry removed = pending->entries[index];
  --pending->count;
  ++pending->ended;
  for (uint32_t i = index; i < pending->count; ++i) {
    pending->entries[i] = pending->entries[i + 1];
  }
  return removed;
}

uint32_t pendingFindToken(const tPendingList* pending, uint64_t token) {
  uint32_t index = 0;
  while (index < pending->count && pending->entries[index].token != token) {
    ++index;
  }
  return index;
}

uint32_t pendingFindHandle(const tPendingList* pending, uint64_t handle) {
  uint32_t index = 0;
  while (index < pending->count && pending->entries[index].handle != handle) {
    ++index;
  }
  return index;
}
