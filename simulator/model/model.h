/* The simulated controller as the library sees it through its driver: a deterministic state machine
 * without operating system, heap or globals. Requests go in as bytes, replies come out as bytes.
 *
 * The host (the kernel driver, or the fake Windows of the tests) owns the memory of the model and
 * calls it for one request at a time; the model takes no lock. The services of the host are called
 * from inside a model call, on its thread. */
#ifndef SIMULATOR_MODEL_MODEL_H
#define SIMULATOR_MODEL_MODEL_H

#include "simulator/model/attributes.h"
#include "simulator/model/firmware.h"
#include "simulator/model/host.h"
#include "simulator/model/notifications.h"
#include "simulator/model/pending.h"
#include "simulator/model/requestlog.h"
#include "simulator/model/router.h"
#include "simulator/model/scripts.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The complete state; its members are private to the model. About 320 KB: too large for a stack.
 * modelInitialise does not require zeroed memory. */
struct tModel {
  tModelHost host;
  uint64_t filesOpened;
  uint64_t filesClosed;
  uint32_t replyDelay; /* of the latest request */
  tSimulatorPresence presence;
  tSmbiosHandover handover;
  tAttributeStore attributes;
  tScriptList scripts;
  tPendingList pending;
  tNotificationList notifications;
  tRouter router;
  tRequestLog log;
  tFirmwareSink firmware;
};

/* Initialises the default machine and reports its presence to the host. */
void modelInitialise(tModel* model, const tModelHost* host);
void modelOpen(tModel* model, const tModelFile* file);
/* Call when the last handle is closed. Completes the file's pending requests. Idempotent. */
void modelCleanUp(tModel* model, const tModelFile* file);
/* Call when the file is closed and no request on it is pending. */
void modelClose(tModel* model, const tModelFile* file);
/* Call after modelRequest returned pending, when the host is ready to complete the request. */
void modelPended(tModel* model, uint64_t token);
/* Call when the host completes a pending request as cancelled. False if it is not pending. */
bool modelCancel(tModel* model, uint64_t token);
tModelReply modelRequest(tModel* model, const tModelRequest* request);
/* The time, in microseconds, by which the host delays the reply of the latest request. A host without a
 * clock may ignore it. */
uint32_t modelReplyDelay(const tModel* model);

/* ---- The default machine: every attribute of the library has a value on it (defaultmachine.c) ---- */

/* One controller, one Marten device, one device path. */
extern const tSimulatorPresence kDefaultPresence;

/* Restores the default machine, without scripts, pending requests, notifications and routes, and
 * with an empty log. Does not change the presence of the interfaces. */
void resetMachine(tModel* model);

#ifdef __cplusplus
}
#endif

#endif
