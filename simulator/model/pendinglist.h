/* The requests that are pending, oldest first: a list of fixed capacity. */
#ifndef SIMULATOR_MODEL_PENDINGLIST_H
#define SIMULATOR_MODEL_PENDINGLIST_H

#include <stdbool.h>

#include "simulator/model/modelfile.h"

typedef struct tPendingEntry {
  uint64_t token;
  tModelFile file;
  uint64_t handle;        /* 0: waiting to be accepted */
  uint64_t handleAddress; /* of the caller, to be told the handle */
  uint64_t event;         /* of the caller, to be signalled then */
  uint64_t b;
  uint16_t a;
  uint8_t c;
} tPendingEntry;

typedef struct tPendingList {
  tSimulatorAcceptance acceptance;
  uint64_t nextHandle;
  uint64_t begun;
  uint64_t ended;
  uint32_t count;
  tPendingEntry entries[SIMULATOR_PENDING_CAPACITY];
} tPendingList;

/* Forgets everything but what was counted, and accepts at once from now on. */
void pendingClear(tPendingList* pending);
/* False when the list is full. */
bool pendingAdd(tPendingList* pending, const tPendingEntry* entry);
/* Takes an entry out; the later ones move up. */
tPendingEntry pendingRemove(tPendingList* pending, uint32_t index);
/* The index of an entry; `count` when there is none. */
uint32_t pendingFindToken(const tPendingList* pending, uint64_t token);
uint32_t pendingFindHandle(const tPendingList* pending, uint64_t handle);

#endif
