#ifndef SOURCE_USER_FIRMWARE_TFIRMWAREPAYLOAD_H
#define SOURCE_USER_FIRMWARE_TFIRMWAREPAYLOAD_H

#include <cstdint>
#include <cstdlib>
#include <deque>

#include "source/user/firmware/tsharedtext.h"

namespace nQUENRA1400 {

// One section of a firmware image. The record owns its texts but not `data`, which is memory of the C
// heap: the owner of the list calls freePayloads before it destroys the list, on every path.
struct tFirmwarePayload {
  uint8_t* data = nullptr;
  uint32_t byteCount = 0;
  tSharedText targetDevice;
  tSharedText version;
  tSharedText targetFileName;  // empty when the section writes no file
};

// Records are added at both ends.
using tFirmwarePayloads = std::deque<tFirmwarePayload>;

// Frees the data of all records; the records stay.
inline void freePayloads(tFirmwarePayloads& payloads) noexcept {
  for (tFirmwarePayload& payload : payloads) {
    std::free(payload.data);
    payload.data = nullptr;
  }
}

}  // namespace nQUENRA1400

#endif
