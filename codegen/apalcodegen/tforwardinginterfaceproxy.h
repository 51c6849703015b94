#ifndef CODEGEN_APALCODEGEN_TFORWARDINGINTERFACEPROXY_H
#define CODEGEN_APALCODEGEN_TFORWARDINGINTERFACEPROXY_H

#include "zoapal/protons/driver/windowsu/tdeviceinterfaceproxy.h"

namespace nQUENRA1400::nZOAPAL000 {

// The base of the typed interfaces: each is a channel itself and forwards to that of its device. Refers
// to the device and owns nothing.
class tForwardingInterfaceProxy : public virtual iInterfaceProxy {
 public:
  explicit tForwardingInterfaceProxy(tDeviceInterfaceProxy& device) noexcept : device_(device) {}

  void close() noexcept override { device_.close(); }
  uint32_t deviceControl(uint32_t code, const void* in, uint32_t inSize, void* out,
                         uint32_t outSize, nZOAPALS100::tStatus& status) noexcept override {
    return device_.deviceControl(code, in, inSize, out, outSize, status);
  }
  uint32_t read(void* buffer, uint32_t size, nZOAPALS100::tStatus& status) noexcept override {
    return device_.read(buffer, size, status);
  }
  uint32_t write(const void* buffer, uint32_t size,
                 nZOAPALS100::tStatus& status) noexcept override {
    return device_.write(buffer, size, status);
  }
  uint64_t beginPendingRequest(uint16_t a, uint64_t b, uint8_t c, tPendingRequest& request,
                               nZOAPALS100::tStatus& status) noexcept override {
    return device_.beginPendingRequest(a, b, c, request, status);
  }
  void endPendingRequest(tPendingRequest& request) noexcept override {
    device_.endPendingRequest(request);
  }

 private:
  tDeviceInterfaceProxy& device_;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
