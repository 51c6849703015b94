#ifndef ZOAPAL_PROTONS_DRIVER_TDEVICEPATH_H
#define ZOAPAL_PROTONS_DRIVER_TDEVICEPATH_H

#include <cstdint>

namespace nQUENRA1400::nZOAPAL000 {

// The path of a device interface.
struct tDevicePath {
  static constexpr uint32_t kCapacity = 256;

  char text[kCapacity] = {};  // always NUL-terminated
  uint32_t length = 0;        // with the NUL; 0 when there is no path

  [[nodiscard]] bool isEmpty() const noexcept { return length == 0; }
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
