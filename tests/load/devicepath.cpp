#include "tests/load/devicepath.h"

#include <array>

#include "quenra.h"
#include "tests/load/brokenpromise.h"

namespace nTests {

std::string routingDevicePath() {
  std::array<char, 256> path{};
  uint64_t size = path.size();
  const int32_t code =
      QUENRA_getAttributeUTF8(QUENRA_HANDLE, QUENRA_ATTRIBUTE_DEVICE_PATH, path.data(), &size);
  require(code == 0, "asking for the device path gives " + std::to_string(code));
  return path.data();
}

}  // namespace nTests
