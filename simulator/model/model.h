/* The simulated controller as the library sees it through its driver: a deterministic state machine
 * without operating system, heap or globals. Requests go in as bytes, replies come out as bytes.
 *
 * The host (the kernel driver, or the fake Windows of the tests) owns the memory of the model and
 * calls it for one request at a time; the model takes no lock. The services of the host are called
 * from inside a model call, on its thread. */
#ifndef SIMULATOR_MODEL_MODEL_H
#define SIMULATOR_MODEL_MODEL_H

#include <stdbool.h>
#include <stdint.h>

#include "simulator/control/controlprotocol.h"
#include "simulator/model/modelfile.h"

#ifdef __cplusplus
extern "C" {
#endif

/* What the model needs of its surroundings. All entries are set. */
typedef struct tModelHost {
  void* context;
  /* Copies between the memory of the calling process and the model's. False, with nothing promised
   * about the destination, when any byte of the caller's range cannot be reached. */
  bool (*readCaller)(void* context, uint64_t process, uint64_t address, void* destination,
                     uint32_t size);
  bool (*writeCaller)(void* context, uint64_t process, uint64_t address, const void* source,
                      uint32_t size);
  /* Signals an event of the calling process. False when it is none. */
  bool (*signalEvent)(void* context, uint64_t process, uint64_t event);
  /* Completes a request that was left pending; `output` fits its buffer. Its token is free from then
   * on. */
  void (*completeRequest)(void* context, uint64_t token, uint32_t windowsError, const void* output,
                          uint32_t size);
  /* The presence of device interfaces has changed and the host is to publish or withdraw them. */
  void (*presenceChanged)(void* context, const tSimulatorPresence* presence);
} tModelHost;

/* One device control request. `input` and `output` may be the same memory. */
typedef struct tModelRequest {
  tModelFile file;
  uint32_t code;
  const void* input;
  uint32_t inputSize;
  void* output;
  uint32_t outputSize; /* its capacity in bytes */
  uint64_t token;      /* names it while it is pending; 0: the host cannot keep it pending */
} tModelRequest;

typedef struct tModelReply {
  uint32_t windowsError; /* 0: success; 997: the request is pending; else it fails with it */
  uint32_t size;         /* bytes written to `output`; 0 on failure */
} tModelReply;

/* The whole state. Its members are the model's own. */
typedef struct tModel tModel;
#include "simulator/model/modelstate.h"

/* Makes the default machine and tells the host its presence. */
void modelInitialise(tModel* model, const tModelHost* host);
void modelOpen(tModel* model, const tModelFile* file);
/* The file's last handle is closed: completes what it has pending. May be told twice. */
void modelCleanUp(tModel* model, const tModelFile* file);
/* The file is gone, and no request on it is under way. */
void modelClose(tModel* model, const tModelFile* file);
/* The host is ready to complete a request that it has just been told is pending. */
void modelPended(tModel* model, uint64_t token);
/* The host completes a pending request itself, as cancelled. False when it is no longer pending. */
bool modelCancel(tModel* model, uint64_t token);
tModelReply modelRequest(tModel* model, const tModelRequest* request);

#ifdef __cplusplus
}
#endif

#endif
