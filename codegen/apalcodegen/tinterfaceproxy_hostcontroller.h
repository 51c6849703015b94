#ifndef CODEGEN_APALCODEGEN_TINTERFACEPROXY_HOSTCONTROLLER_H
#define CODEGEN_APALCODEGEN_TINTERFACEPROXY_HOSTCONTROLLER_H

#include <cstdint>

#include "codegen/apalcodegen/marshalling.h"

namespace nQUENRA1400::nZOAPAL000 {

// The controller's main interface. Every method sends one request and waits for the reply; it does
// nothing if the status holds an error. Buffers are addresses in this process as 64-bit numbers, sizes
// are in bytes. A reply sets the out-values, also one that reports an error.
class iInterfaceProxy_hostControllerBase : public virtual iInterfaceProxy {
 public:
  // Fetches the SMBIOS version text and structure table. With addresses and sizes of 0 it queries the
  // sizes, which the driver returns with its buffer-too-small code.
  virtual void exchangeValues(uint64_t textBuffer, uint32_t& textSize, uint64_t tableBuffer,
                              int32_t& tableSize, nZOAPALS100::tStatus& status) noexcept = 0;

  // Sends a firmware payload.
  virtual void sendCommand(uint64_t payload, uint32_t payloadSize,
                           nZOAPALS100::tStatus& status) noexcept = 0;

  // `size`: in the buffer's capacity, out the bytes filled or needed.
  virtual void getAttribute(uint32_t attribute, uint64_t buffer, uint32_t& size,
                            nZOAPALS100::tStatus& status) noexcept = 0;

  virtual void setAttribute(uint32_t attribute, uint64_t buffer, int32_t size,
                            nZOAPALS100::tStatus& status) noexcept = 0;
};

class iInterfaceProxy_hostController : public iInterfaceProxy_hostControllerBase {};

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
