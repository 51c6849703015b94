#ifndef CODEGEN_APALCODEGEN_TINTERFACEPROXY_HOSTMARTEN_H
#define CODEGEN_APALCODEGEN_TINTERFACEPROXY_HOSTMARTEN_H

#include <cstdint>

#include "codegen/apalcodegen/marshalling.h"

namespace nQUENRA1400::nZOAPAL000 {

// The controller's second device. The rules are those of iInterfaceProxy_hostControllerBase.
class iInterfaceProxy_hostMarten : public virtual iInterfaceProxy {
 public:
  // Sends a firmware payload.
  virtual void sendCommand(uint64_t payload, uint32_t payloadSize,
                           nZOAPALS100::tStatus& status) noexcept = 0;

  // `size`: in the buffer's capacity, out the bytes filled or needed.
  virtual void getAttribute(uint32_t attribute, uint64_t buffer, uint32_t& size,
                            nZOAPALS100::tStatus& status) noexcept = 0;

  virtual void setAttribute(uint32_t attribute, uint64_t buffer, int32_t size,
                            nZOAPALS100::tStatus& status) noexcept = 0;
};

class tInterfaceProxy_hostMarten final : public iInterfaceProxy_hostMarten,
                                         public tForwardingInterfaceProxy {
 public:
  using tForwardingInterfaceProxy::tForwardingInterfaceProxy;

  void sendCommand(uint64_t payload, uint32_t payloadSize,
                   nZOAPALS100::tStatus& status) noexcept override;
  void getAttribute(uint32_t attribute, uint64_t buffer, uint32_t& size,
                    nZOAPALS100::tStatus& status) noexcept override;
  void setAttribute(uint32_t attribute, uint64_t buffer, int32_t size,
                    nZOAPALS100::tStatus& status) noexcept override;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
