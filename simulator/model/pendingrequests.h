/* The requests that stay pending until they are ended: REQUEST_PENDING_NARROW, REQUEST_PENDING_WIDE
 * and REQUEST_END_PENDING, which every interface of the driver takes. */
#ifndef SIMULATOR_MODEL_PENDINGREQUESTS_H
#define SIMULATOR_MODEL_PENDINGREQUESTS_H

#include "simulator/model/model.h"

/* Whether the code is one of the three. */
bool isPendingRequest(uint32_t code);
tModelReply carryOutPendingRequest(tModel* model, const tModelRequest* request);

/* Accepts every request that is waiting: its caller is told its handle. */
void acceptPending(tModel* model);
/* Completes the request with this handle; false when there is none. 0 completes every request that
 * waits to be accepted. */
bool completePending(tModel* model, uint64_t handle, uint32_t windowsError);
/* Accepts the request with this token, if there is one and requests are accepted at once. */
void acceptIfAtOnce(tModel* model, uint64_t token);
/* Forgets the request with this token, which is cancelled; false when there is none. */
bool forgetPending(tModel* model, uint64_t token);
/* Completes what a file, or the whole machine, has pending, as aborted. */
void abortPendingOf(tModel* model, const tModelFile* file);
void abortAllPending(tModel* model);

#endif
