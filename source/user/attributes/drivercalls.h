#ifndef SOURCE_USER_ATTRIBUTES_DRIVERCALLS_H
#define SOURCE_USER_ATTRIBUTES_DRIVERCALLS_H

#include <bit>
#include <cstdint>

#include "source/user/attributes/attributeid.h"
#include "zoapal/protons/status/tstatus.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

// Requests to the driver carry addresses as numbers. Each call has a record of its own, which starts
// with the session's code, possibly a warning, and is merged into the session's status.

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
// the driver reports; unchanged when the request did not reach the driver.
template <class Interface>
void readFromDriver(Interface& device, tAttributeId attribute, void* buffer, uint32_t& size,
                    nZOAPALS100::tStatus& status) noexcept {
  device.getAttribute(attribute.value(), addressOf(buffer), size, status);
}

// As above, for an unsigned attribute.
template <class Interface>
void readFromDriver(Interface& device, tAttributeId attribute, uint32_t& value,
                    nZOAPALS100::tStatus& status) noexcept {
  uint32_t size = sizeof value;
  readFromDriver(device, attribute, &value, size, status);
}

// Writes a value of `size` bytes to an interface of the driver.
template <class Interface>
void writeToDriver(Interface& device, tAttributeId attribute, const void* value, int32_t size,
                   zoerr::Status& status) noexcept {
  nZOAPALS100::tStatus driver = recordFor(status);
  device.setAttribute(attribute.value(), addressOf(value), size, driver);
  status.mergeFrom(driver);
}

}  // namespace nQUENRA1400

#endif
