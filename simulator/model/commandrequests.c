/* REQUEST_CONTROLLER_SEND_COMMAND and REQUEST_MARTEN_SEND_COMMAND. */
#include "simulator/model/bytes.h"
#include "simulator/model/driverrequests.h"

/* The machine takes no firmware yet, so the payload is not even read. */
void carryOutSendCommand(tModel* model, const tModelFile* file, const void* input, void* reply) {
  (void)model;
  (void)file;
  (void)input;
  const tStatusReply answer = {SIMULATOR_STATUS_NOT_SUPPORTED};
  copyBytes(reply, &answer, sizeof(answer));
}
