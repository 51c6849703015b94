/* A record of the firmware payloads received on the controller and the Marten interface. */
#ifndef SIMULATOR_MODEL_FIRMWARE_H
#define SIMULATOR_MODEL_FIRMWARE_H

#include <stdbool.h>
#include <stdint.h>

#include "simulator/protocol/controlprotocol.h"

enum {
  FIRMWARE_PIECE_SIZE = 65536
};

typedef struct tFirmwareSink {
  uint32_t controllerPayloads; /* since the record was last cleared */
  uint32_t martenPayloads;
  uint64_t count;                                       /* of both */
  tSimulatorPayload latest[SIMULATOR_PAYLOAD_CAPACITY]; /* a ring */
  uint8_t piece[FIRMWARE_PIECE_SIZE];                   /* of the payload being read */
} tFirmwareSink;

void firmwareClear(tFirmwareSink* sink);
/* Stores the record of a payload and assigns its number. */
void firmwareRecord(tFirmwareSink* sink, const tSimulatorPayload* payload);
/* The number of stored records. */
uint32_t firmwareCount(const tFirmwareSink* sink);
/* Copies the oldest `count` records to `destination`, which need not be aligned. */
void firmwareCopy(const tFirmwareSink* sink, uint32_t count, void* destination);

#endif
