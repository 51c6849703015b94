// Requests to the driver. They carry addresses as numbers, and each has a record of its own, which
// starts with the session's code, possibly a warning, and is merged into the session's status.
#ifndef SOURCE_USER_MACHINE_DRIVERCALLS_H
#define SOURCE_USER_MACHINE_DRIVERCALLS_H

#include <bit>
#include <cstdint>

#include "zoapal/protons/status/tstatus.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

[[nodiscard]] inline uint64_t addressOf(const void* memory) noexcept {
  static_assert(sizeof(uintptr_t) == sizeof(uint64_t));
  return std::bit_cast<uintptr_t>(memory);
}

[[nodiscard]] inline nZOAPALS100::tStatus recordFor(const zoerr::Status& status) noexcept {
  nZOAPALS100::tStatus record;
  record.code = status.code;
  return record;
}

// Reads an attribute from an interface of the driver. `size`: in the buffer's bytes, out the size that
// the driver reports; unchanged when the request did not reach the driver. Returns the driver's code.
template <class Interface>
int32_t readFromDriver(Interface& device, uint32_t attribute, void* buffer, uint32_t& size,
                       zoerr::Status& status) noexcept {
  nZOAPALS100::tStatus driver = recordFor(status);
  device.getAttribute(attribute, addressOf(buffer), size, driver);
  status.mergeFrom(driver);
  return driver.code;
}

// As above, for an unsigned attribute.
template <class Interface>
void readFromDriver(Interface& device, uint32_t attribute, uint32_t& value,
                    zoerr::Status& status) noexcept {
  uint32_t size = sizeof value;
  readFromDriver(device, attribute, &value, size, status);
}

// Writes a value of `size` bytes to an interface of the driver.
template <class Interface>
void writeToDriver(Interface& device, uint32_t attribute, const void* value, int32_t size,
                   zoerr::Status& status) noexcept {
  nZOAPALS100::tStatus driver = recordFor(status);
  device.setAttribute(attribute, addressOf(value), size, driver);
  status.mergeFrom(driver);
}

// Sends `size` bytes of firmware to an interface of the driver.
template <class Interface>
void sendToDriver(Interface& device, const void* firmware, uint32_t size,
                  zoerr::Status& status) noexcept {
  nZOAPALS100::tStatus driver = recordFor(status);
  device.sendCommand(addressOf(firmware), size, driver);
  status.mergeFrom(driver);
}

}  // namespace nQUENRA1400

#endif
