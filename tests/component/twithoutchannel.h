// For doubles of the driver's interfaces.
#ifndef TESTS_COMPONENT_TWITHOUTCHANNEL_H
#define TESTS_COMPONENT_TWITHOUTCHANNEL_H

#include <cstdint>

#include "zoapal/protons/driver/iinterfaceproxy.h"

namespace nTests {

// An interface without the operations of the channel below it: they do nothing.
template <class Interface>
class tWithoutChannel : public Interface {
 public:
  using tStatus = nZOAPALS100::tStatus;

  void close() noexcept override {}
  uint32_t deviceControl(uint32_t, const void*, uint32_t, void*, uint32_t,
                         tStatus&) noexcept override {
    return 0;
  }
  uint32_t read(void*, uint32_t, tStatus&) noexcept override { return 0; }
  uint32_t write(const void*, uint32_t, tStatus&) noexcept override { return 0; }
  uint64_t beginPendingRequest(uint16_t, uint64_t, uint8_t,
                               nQUENRA1400::nZOAPAL000::tPendingRequest&,
                               tStatus&) noexcept override {
    return 0;
  }
  void endPendingRequest(nQUENRA1400::nZOAPAL000::tPendingRequest&) noexcept override {}
};

}  // namespace nTests

#endif
