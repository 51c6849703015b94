#ifndef CODEGEN_APALCODEGEN_ATTRIBUTEREQUESTS_H
#define CODEGEN_APALCODEGEN_ATTRIBUTEREQUESTS_H

#include "codegen/apalcodegen/marshalling.h"
#include "protocol/controllerrequests.h"

namespace nQUENRA1400::nZOAPAL000 {

// The requests that the controller and the Marten interface share; only the site at which the driver's
// code is merged differs.

inline void requestGetAttribute(iInterfaceProxy& device, uint32_t attribute, uint64_t buffer,
                                uint32_t& size, const nZOAPALS100::tSourceLocation& site,
                                nZOAPALS100::tStatus& status) noexcept {
  tGetAttributeRequest request{};
  request.attribute = attribute;
  request.buffer = buffer;
  request.size = size;
  call<tGetAttributeReply>(
      device, REQUEST_GET_ATTRIBUTE, request, site, status,
      [&size](const tGetAttributeReply& reply) noexcept { size = reply.size; });
}

inline void requestSetAttribute(iInterfaceProxy& device, uint32_t attribute, uint64_t buffer,
                                int32_t size, const nZOAPALS100::tSourceLocation& site,
                                nZOAPALS100::tStatus& status) noexcept {
  tSetAttributeRequest request{};
  request.attribute = attribute;
  request.buffer = buffer;
  request.size = size;
  call<tStatusReply>(device, REQUEST_SET_ATTRIBUTE, request, site, status);
}

inline void requestSendCommand(iInterfaceProxy& device, uint32_t code, uint64_t payload,
                               uint32_t payloadSize, const nZOAPALS100::tSourceLocation& site,
                               nZOAPALS100::tStatus& status) noexcept {
  tSendCommandRequest request{};
  request.payload = payload;
  request.payloadSize = payloadSize;
  call<tStatusReply>(device, code, request, site, status);
}

}  // namespace nQUENRA1400::nZOAPAL000

#endif
