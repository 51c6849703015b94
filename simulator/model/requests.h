/* The requests of the library and of the control interface, as the simulated driver answers them. */
#ifndef SIMULATOR_MODEL_REQUESTS_H
#define SIMULATOR_MODEL_REQUESTS_H

#include "simulator/model/model.h"

/* Answers a request of the library as a matching script specifies, else as the machine does. */
tModelReply answerDriverRequest(tModel* model, const tModelRequest* request);
/* Answers a request of the control interface, which configures the simulated machine. */
tModelReply answerControlRequest(tModel* model, const tModelRequest* request);

/* Carries out one request of the library. `input` has at least the size of the request, `reply` at least that of
 * the reply. They may be the same memory: read all input before writing. Neither need be aligned. */
typedef void tDriverOperation(tModel* model, const tModelFile* file, const void* input,
                              void* reply);

/* attributes.c */
tDriverOperation carryOutExchangeValues;
tDriverOperation carryOutGetAttribute;
tDriverOperation carryOutSetAttribute;
/* firmware.c */
tDriverOperation carryOutSendCommand;
/* routerequests.c */
tDriverOperation carryOutCountTerminals;
tDriverOperation carryOutCalculateRoute;
tDriverOperation carryOutDestroyRoute;
tDriverOperation carryOutReserveRoute;
tDriverOperation carryOutProgramRoute;
tDriverOperation carryOutUnprogramRoute;
tDriverOperation carryOutUnreserveRoute;
tDriverOperation carryOutGetPath;
tDriverOperation carryOutGetTopographyName;
tDriverOperation carryOutResetTerminal;
tDriverOperation carryOutCalculateReset;

#endif
