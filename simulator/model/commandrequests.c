/* REQUEST_CONTROLLER_SEND_COMMAND and REQUEST_MARTEN_SEND_COMMAND. */
#include "simulator/model/bytes.h"
#include "simulator/model/driverrequests.h"
#include "simulator/model/sha256.h"

/* Reads the payload in pieces, because the model's memory is fixed and the caller chooses the size.
 * False if part of it is not readable. */
static bool readPayload(tModel* model, const tModelFile* file, const tSendCommandRequest* request,
                        tSimulatorPayload* payload) {
  tSha256 hash;
  sha256Start(&hash);
  uint32_t done = 0;
  while (done < request->payloadSize) {
    uint8_t* piece = model->firmware.piece;
    const uint32_t size = smallerOf(request->payloadSize - done, FIRMWARE_PIECE_SIZE);
    if (!model->host.readCaller(model->host.context, file->process, request->payload + done, piece,
                                size)) {
      return false;
    }
    if (done == 0) {
      copyBytes(payload->start, piece, smallerOf(size, SIMULATOR_PAYLOAD_START));
    }
    sha256Add(&hash, piece, size);
    done += size;
  }
  sha256Finish(&hash, payload->sha256);
  return true;
}

void carryOutSendCommand(tModel* model, const tModelFile* file, const void* input, void* reply) {
  tSendCommandRequest request;
  copyBytes(&request, input, sizeof(request));
  tSimulatorPayload payload;
  fillWithZeros(&payload, sizeof(payload));
  payload.interfaceKind = file->interfaceKind;
  payload.process = file->process;
  payload.size = request.payloadSize;
  payload.callerStatus = request.callerStatus;
  tStatusReply answer = {SIMULATOR_STATUS_BAD_ADDRESS};
  if (readPayload(model, file, &request, &payload)) {
    firmwareKeep(&model->firmware, &payload);
    answer.driverStatus = 0;
  }
  copyBytes(reply, &answer, sizeof(answer));
}
