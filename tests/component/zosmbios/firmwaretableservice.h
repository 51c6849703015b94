#ifndef TESTS_COMPONENT_ZOSMBIOS_FIRMWARETABLESERVICE_H
#define TESTS_COMPONENT_ZOSMBIOS_FIRMWARETABLESERVICE_H

#include <cstdint>
#include <optional>
#include <vector>

namespace nTests {

// The operating system's firmware-table service as the loader calls it: scripted answers and
// recorded calls.
struct tFirmwareTableService {
  std::vector<uint8_t> answer;           // with the header that precedes the structures
  std::optional<uint32_t> toldSize;      // the answer to the first call; the answer's size if none
  std::optional<uint32_t> receivedSize;  // the answer to the second call; likewise
  uint32_t firstError = 0;               // the last error that each call leaves
  uint32_t secondError = 0;

  struct tCall {
    uint32_t provider;
    uint32_t table;
    bool hasBuffer;
    uint32_t size;
    bool operator==(const tCall&) const = default;
  };
  std::vector<tCall> calls;
};

// The instance that the loader calls.
tFirmwareTableService& firmwareTableService();

}  // namespace nTests

#endif
