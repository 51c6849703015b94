/* The requests that the library sends, as the simulated driver carries them out. */
#ifndef SIMULATOR_MODEL_DRIVERREQUESTS_H
#define SIMULATOR_MODEL_DRIVERREQUESTS_H

#include <stddef.h>

#include "protocol/controllerrequests.h"
#include "simulator/model/model.h"

/* Carries one request out. `input` holds at least the layout's bytes, `reply` has room for the
 * reply's, and the two may be the same memory: read everything first. Neither need be aligned. */
typedef void tDriverOperation(tModel* model, const tModelFile* file, const void* input,
                              void* reply);

typedef struct tDriverRequest {
  tSimulatorInterface interfaceKind;
  uint32_t code;
  uint32_t inputSize; /* bytes that are needed; more are ignored */
  uint32_t replySize;
  tDriverOperation* carryOut;
} tDriverRequest;

/* Null when the interface does not know the code. */
const tDriverRequest* findDriverRequest(tSimulatorInterface interfaceKind, uint32_t code);

tDriverOperation carryOutExchangeValues;
tDriverOperation carryOutGetAttribute;
tDriverOperation carryOutSetAttribute;
tDriverOperation carryOutSendCommand;

#endif
