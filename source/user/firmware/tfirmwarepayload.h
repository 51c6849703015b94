#ifndef SOURCE_USER_FIRMWARE_TFIRMWAREPAYLOAD_H
#define SOURCE_USER_FIRMWARE_TFIRMWAREPAYLOAD_H

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace nQUENRA1400 {

// One section of a firmware image. `data` is memory of the C heap that lives on when the record ends:
// whoever holds the list frees it, on every path, before the list goes.
struct tFirmwarePayload {
  uint8_t* data = nullptr;
  uint32_t byteCount = 0;
  std::string targetDevice;
  std::string version;
  std::string targetFileName;  // empty when the section writes no file
};

using tFirmwarePayloads = std::vector<tFirmwarePayload>;

// Frees what the records own; the records stay.
inline void freePayloads(tFirmwarePayloads& payloads) noexcept {
  for (tFirmwarePayload& payload : payloads) {
    std::free(payload.data);
    payload.data = nullptr;
  }
}

}  // namespace nQUENRA1400

#endif
