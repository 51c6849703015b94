/* Requests that stay pending until the caller ends them: REQUEST_PENDING_NARROW,
 * REQUEST_PENDING_WIDE and REQUEST_END_PENDING, supported on every interface of the driver. */
#ifndef SIMULATOR_MODEL_PENDING_H
#define SIMULATOR_MODEL_PENDING_H

#include "simulator/model/host.h"

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

/* Oldest first. */
typedef struct tPendingList {
  tSimulatorAcceptance acceptance;
  uint64_t nextHandle;
  uint64_t begun;
  uint64_t ended;
  uint32_t count;
  tPendingEntry entries[SIMULATOR_PENDING_CAPACITY];
} tPendingList;

/* True for the three codes above. */
bool isPendingRequest(uint32_t code);
tModelReply carryOutPendingRequest(tModel* model, const tModelRequest* request);

/* Accepts every request that waits for acceptance: writes its handle to its caller. */
void acceptPending(tModel* model);
/* Accepts the request with this token if it exists and acceptance is immediate. */
void acceptIfImmediate(tModel* model, uint64_t token);
/* Completes the request with this handle; false if there is none. 0 completes every request that
 * waits for acceptance. */
bool completePending(tModel* model, uint64_t handle, uint32_t windowsError);
/* Removes the request with this token, which its host cancels; false if there is none. */
bool cancelPending(tModel* model, uint64_t token);
/* Completes the pending requests of a file as aborted. */
void abortPendingOf(tModel* model, const tModelFile* file);
/* Completes all pending requests as aborted, and sets the acceptance to immediate. */
void resetPending(tModel* model);

#endif
