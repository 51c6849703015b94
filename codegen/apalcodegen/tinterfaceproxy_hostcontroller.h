#ifndef CODEGEN_APALCODEGEN_TINTERFACEPROXY_HOSTCONTROLLER_H
#define CODEGEN_APALCODEGEN_TINTERFACEPROXY_HOSTCONTROLLER_H

#include "codegen/apalcodegen/iinterfaceproxy_hostcontroller.h"
#include "codegen/apalcodegen/tforwardinginterfaceproxy.h"

namespace nQUENRA1400::nZOAPAL000 {

class tInterfaceProxy_hostController final : public iInterfaceProxy_hostController,
                                             public tForwardingInterfaceProxy {
 public:
  using tForwardingInterfaceProxy::tForwardingInterfaceProxy;

  void exchangeValues(uint64_t textBuffer, uint32_t& textSize, uint64_t tableBuffer,
                      int32_t& tableSize, nZOAPALS100::tStatus& status) noexcept override;
  void sendCommand(uint64_t payload, uint32_t payloadSize,
                   nZOAPALS100::tStatus& status) noexcept override;
  void getAttribute(uint32_t attribute, uint64_t buffer, uint32_t& size,
                    nZOAPALS100::tStatus& status) noexcept override;
  void setAttribute(uint32_t attribute, uint64_t buffer, int32_t size,
                    nZOAPALS100::tStatus& status) noexcept override;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
