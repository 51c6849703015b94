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
  /* The presence of device interfaces has changed and the host is to publish or withdraw them. */
  void (*presenceChanged)(void* context, const tSimulatorPresence* presence);
} tModelHost;

/* One open file: on which interface, by which process. `file` is chosen by the host, never 0. */
typedef struct tModelFile {
  uint64_t file;
  uint64_t process;
  tSimulatorInterface interfaceKind;
} tModelFile;

/* One device control request. `input` and `output` may be the same memory. */
typedef struct tModelRequest {
  tModelFile file;
  uint32_t code;
  const void* input;
  uint32_t inputSize;
  void* output;
  uint32_t outputSize; /* its capacity in bytes */
} tModelRequest;

typedef struct tModelReply {
  uint32_t windowsError; /* 0: success; else the request fails with it */
  uint32_t size;         /* bytes written to `output`; 0 on failure */
} tModelReply;

/* The whole state. Its members are the model's own. */
typedef struct tModel tModel;
#include "simulator/model/modelstate.h"

/* Makes the default machine and tells the host its presence. */
void modelInitialise(tModel* model, const tModelHost* host);
void modelOpen(tModel* model, const tModelFile* file);
void modelClose(tModel* model, const tModelFile* file);
tModelReply modelRequest(tModel* model, const tModelRequest* request);

#ifdef __cplusplus
}
#endif

#endif
