/* Requests that stay pending until the caller ends them: REQUEST_PENDING_NARROW,
 * REQUEST_PENDING_WIDE and REQUEST_END_PENDING, supported on every interface of the driver. */
#ifndef SIMULATOR_MODEL_PENDINGREQUESTS_H
#define SIMULATOR_MODEL_PENDINGREQUESTS_H

#include "simulator/model/model.h"

/* True for the three codes above. */
bool isPendingRequest(uint32_t code);
tModelReply carryOutPendingRequest(tModel* model, const tModelRequest* request);

/* Accepts every request that waits for acceptance: writes its handle to its caller. */
void acceptPending(tModel* model);
/* Completes the request with this handle; false if there is none. 0 completes every request that
 * waits for acceptance. */
bool completePending(tModel* model, uint64_t handle, uint32_t windowsError);
/* Accepts the request with this token if it exists and acceptance is immediate. */
void acceptIfAtOnce(tModel* model, uint64_t token);
/* Removes the request with this token, which is cancelled; false if there is none. */
bool forgetPending(tModel* model, uint64_t token);
/* Complete the pending requests of a file, or of all files, as aborted. */
void abortPendingOf(tModel* model, const tModelFile* file);
void abortAllPending(tModel* model);

#endif
