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

#include "simulator/model/modelfile.h"
#include "simulator/protocol/controlprotocol.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Services that the host provides to the model. No function is null. */
typedef struct tModelHost {
  void* context;
  /* Copy between the memory of the calling process and the model's. False if any byte of the
   * caller's range is not accessible; the contents of the destination are then unspecified. */
  bool (*readCaller)(void* context, uint64_t process, uint64_t address, void* destination,
                     uint32_t size);
  bool (*writeCaller)(void* context, uint64_t process, uint64_t address, const void* source,
                      uint32_t size);
  /* Signals an event of the calling process. False if `event` is not an event. */
  bool (*signalEvent)(void* context, uint64_t process, uint64_t event);
  /* Completes a pending request; `output` fits its buffer. The host may use the token again
   * afterwards. */
  void (*completeRequest)(void* context, uint64_t token, uint32_t windowsError, const void* output,
                          uint32_t size);
  /* Enables and disables device interfaces to match the changed presence. */
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
  uint64_t token;      /* identifies it while pending; 0: the host cannot keep it pending */
} tModelRequest;

typedef struct tModelReply {
  uint32_t windowsError; /* 0: success; 997: pending; otherwise the reason of the failure */
  uint32_t size;         /* bytes written to `output`; 0 on failure */
} tModelReply;

/* The complete state. Its members are private to the model. */
typedef struct tModel tModel;
#include "simulator/model/modelstate.h"

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

#ifdef __cplusplus
}
#endif

#endif
