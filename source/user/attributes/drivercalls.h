#ifndef SOURCE_USER_ATTRIBUTES_DRIVERREAD_H
#define SOURCE_USER_ATTRIBUTES_DRIVERREAD_H

#include <bit>
#include <cstdint>

#include "source/user/attributes/attributeid.h"
#include "zoapal/protons/status/tstatus.h"

namespace nQUENRA1400 {

// Asks an interface of the driver for an attribute. The driver sees the status code and reports
// into the status. `size`: in the buffer's bytes, out what the driver answered; unchanged when the
// request did not reach it.
template <class Interface>
void readFromDriver(Interface& device, tAttributeId attribute, void* buffer, uint32_t& size,
                    nZOAPALS100::tStatus& status) noexcept {
  static_assert(sizeof(uintptr_t) == sizeof(uint64_t));
  device.getAttribute(attribute.value(), std::bit_cast<uintptr_t>(buffer), size, status);
}

// The same for an unsigned attribute.
template <class Interface>
void readFromDriver(Interface& device, tAttributeId attribute, uint32_t& value,
                    nZOAPALS100::tStatus& status) noexcept {
  uint32_t size = sizeof value;
  readFromDriver(device, attribute, &value, size, status);
}

}  // namespace nQUENRA1400

#endif
