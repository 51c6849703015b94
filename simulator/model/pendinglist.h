/* The list of pending requests, oldest first, with a fixed capacity. */
#ifndef SIMULATOR_MODEL_PENDINGLIST_H
#define SIMULATOR_MODEL_PENDINGLIST_H

#include <stdbool.h>

#include "simulator/model/modelfile.h"

typedef struct tPendingEntry {
  uint64_t token;
  tModelFile file;
  uint64_t handle;        /* 0: waiting to be accepted */
  uint64_t handleAddress; /* of the caller; receives the handle */
  uint64_t event;         /* of the caller; signalled when the handle is written */
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

/* Removes all entries, keeps the counts, and sets the acceptance to immediate. */
void pendingClear(tPendingList* pending);
/* False if the list is full. */
bool pendingAdd(tPendingList* pending, const tPendingEntry* entry);
/* Removes an entry; later ones move up. */
tPendingEntry pendingRemove(tPendingList* pending, uint32_t index);
/* The index of an entry; `count` if not found. */
uint32_t pendingFindToken(const tPendingList* pending, uint64_t token);
uint32_t pendingFindHandle(const tPendingList* pending, uint64_t handle);

#endif
