#include "simulator/model/firmware.h"

#include "simulator/model/bytes.h"

void firmwareClear(tFirmwareSink* sink) {
  sink->controllerPayloads = 0;
  sink->martenPayloads = 0;
  sink->count = 0;
}

void firmwareKeep(tFirmwareSink* sink, const tSimulatorPayload* payload) {
  uint32_t* payloads = payload->interfaceKind == kSimulatorInterfaceMarten
                           ? &sink->martenPayloads
                           : &sink->controllerPayloads;
  tSimulatorPayload* slot = &sink->latest[sink->count % SIMULATOR_PAYLOAD_CAPACITY];
  *slot = *payload;
  slot->number = ++*payloads;
  ++sink->count;
}

uint32_t firmwareKept(const tFirmwareSink* sink) {
  return sink->count < SIMULATOR_PAYLOAD_CAPACITY ? (uint32_t)sink->count
                                                  : SIMULATOR_PAYLOAD_CAPACITY;
}

void firmwareCopy(const tFirmwareSink* sink, uint32_t count, void* destination) {
  const uint64_t oldest = sink->count - firmwareKept(sink);
  uint8_t* to = destination;
  for (uint32_t i = 0; i < count; ++i) {
    copyBytes(to, &sink->latest[(oldest + i) % SIMULATOR_PAYLOAD_CAPACITY],
              sizeof(tSimulatorPayload));
    to += sizeof(tSimulatorPayload);
  }
}
