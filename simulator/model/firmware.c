#include "simulator/model/firmware.h"

#include "protocol/controllerrequests.h"
#include "sha256/sha256.h"
#include "simulator/model/bytes.h"
#include "simulator/model/requests.h"

void firmwareClear(tFirmwareSink* sink) {
  sink->controllerPayloads = 0;
  sink->martenPayloads = 0;
  sink->count = 0;
}

void firmwareRecord(tFirmwareSink* sink, const tSimulatorPayload* payload) {
  uint32_t* payloads = payload->interfaceKind == kSimulatorInterfaceMarten
                           ? &sink->martenPayloads
                           : &sink->controllerPayloads;
  tSimulatorPayload* slot = &sink->latest[sink->count % SIMULATOR_PAYLOAD_CAPACITY];
  *slot = *payload;
  slot->number = ++*payloads;
  ++sink->count;
}

uint32_t firmwareCount(const tFirmwareSink* sink) {
  return sink->count < SIMULATOR_PAYLOAD_CAPACITY ? (uint32_t)sink->count
                                                  : SIMULATOR_PAYLOAD_CAPACITY;
}

void firmwareCopy(const tFirmwareSink* sink, uint32_t count, void* destination) {
  const uint64_t oldest = sink->count - firmwareCount(sink);
  uint8_t* to = destination;
  for (uint32_t i = 0; i < count; ++i) {
    copyBytes(to, &sink->latest[(oldest + i) % SIMULATOR_PAYLOAD_CAPACITY],
              sizeof(tSimulatorPayload));
    to += sizeof(tSimulatorPayload);
  }
}

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
    if (!readFromCaller(&model->host, file, request->payload + done, piece, size)) {
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
    firmwareRecord(&model->firmware, &payload);
    answer.driverStatus = 0;
  }
  copyBytes(reply, &answer, sizeof(answer));
}
