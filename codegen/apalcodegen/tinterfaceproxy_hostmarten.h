#ifndef CODEGEN_APALCODEGEN_TINTERFACEPROXY_HOSTMARTEN_H
#define CODEGEN_APALCODEGEN_TINTERFACEPROXY_HOSTMARTEN_H

#include "codegen/apalcodegen/iinterfaceproxy_hostmarten.h"
#include "codegen/apalcodegen/tforwardinginterfaceproxy.h"

namespace nQUENRA1400::nZOAPAL000 {

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
