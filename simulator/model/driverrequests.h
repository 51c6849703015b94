/* The requests that the library sends, as the simulated driver carries them out. */
#ifndef SIMULATOR_MODEL_DRIVERREQUESTS_H
#define SIMULATOR_MODEL_DRIVERREQUESTS_H

#include <stddef.h>

#include "protocol/controllerrequests.h"
#include "simulator/model/model.h"

/* Carries out one request. `input` has at least `inputSize` bytes, `reply` at least `replySize`.
 * They may be the same memory: read all input before writing. Neither need be aligned. */
typedef void tDriverOperation(tModel* model, const tModelFile* file, const void* input,
                              void* reply);

typedef struct tDriverRequest {
  tSimulatorInterface interfaceKind;
  uint32_t code;
  uint32_t inputSize; /* required bytes; more are ignored */
  uint32_t replySize;
  tDriverOperation* carryOut;
} tDriverRequest;

/* Null if the interface does not support the code. */
const tDriverRequest* findDriverRequest(tSimulatorInterface interfaceKind, uint32_t code);

tDriverOperation carryOutExchangeValues;
tDriverOperation carryOutGetAttribute;
tDriverOperation carryOutSetAttribute;
tDriverOperation carryOutSendCommand;

#endif
