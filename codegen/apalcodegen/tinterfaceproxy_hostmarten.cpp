#include "codegen/apalcodegen/tinterfaceproxy_hostmarten.h"

#include "protocol/controllerrequests.h"

namespace nQUENRA1400::nZOAPAL000 {
namespace {

using nZOAPALS100::tSourceLocation;
using nZOAPALS100::tStatus;

constexpr tSourceLocation site(uint32_t line) noexcept {
  return {"tInterfaceProxy_hostMarten", line};
}
constexpr auto kSendCommand = site(69);
constexpr auto kGetAttribute = site(98);
constexpr auto kSetAttribute = site(126);

}  // namespace

void tInterfaceProxy_hostMarten::sendCommand(uint64_t payload, uint32_t payloadSize,
                                             tStatus& status) noexcept {
  tSendCommandRequest request{};
  request.payload = payload;
  request.payloadSize = payloadSize;
  call<tStatusReply>(REQUEST_MARTEN_SEND_COMMAND, request, kSendCommand, status);
}

void tInterfaceProxy_hostMarten::getAttribute(uint32_t attribute, uint64_t buffer, uint32_t& size,
                                              tStatus& status) noexcept {
  tGetAttributeRequest request{};
  request.attribute = attribute;
  request.buffer = buffer;
  request.size = size;
  call<tGetAttributeReply>(
      REQUEST_GET_ATTRIBUTE, request, kGetAttribute, status,
      [&size](const tGetAttributeReply& reply) noexcept { size = reply.size; });
}

void tInterfaceProxy_hostMarten::setAttribute(uint32_t attribute, uint64_t buffer, int32_t size,
                                              tStatus& status) noexcept {
  tSetAttributeRequest request{};
  request.attribute = attribute;
  request.buffer = buffer;
  request.size = size;
  call<tStatusReply>(REQUEST_SET_ATTRIBUTE, request, kSetAttribute, status);
}

}  // namespace nQUENRA1400::nZOAPAL000
