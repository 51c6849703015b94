#include "codegen/apalcodegen/tinterfaceproxy_hostcontroller.h"

#include <bit>

#include "protocol/controllerrequests.h"

namespace nQUENRA1400::nZOAPAL000 {
namespace {

using nZOAPALS100::tSourceLocation;
using nZOAPALS100::tStatus;

constexpr tSourceLocation site(uint32_t line) noexcept {
  return {"tInterfaceProxy_hostController", line};
}
constexpr auto kExchangeValues = site(73);
constexpr auto kSendCommand = site(100);
constexpr auto kGetAttribute = site(129);
constexpr auto kSetAttribute = site(157);

}  // namespace

void tInterfaceProxy_hostController::exchangeValues(uint64_t textBuffer, uint32_t& textSize,
                                                    uint64_t tableBuffer, int32_t& tableSize,
                                                    tStatus& status) noexcept {
  tExchangeValuesRequest request{};
  request.textBuffer = textBuffer;
  request.textSize = textSize;
  request.tableBuffer = tableBuffer;
  request.tableSize = tableSize;
  call<tExchangeValuesReply>(REQUEST_EXCHANGE_VALUES, request, kExchangeValues, status,
                             [&](const tExchangeValuesReply& reply) noexcept {
                               textSize = reply.textSize;
                               tableSize = std::bit_cast<int32_t>(reply.tableSize);
                             });
}

void tInterfaceProxy_hostController::sendCommand(uint64_t payload, uint32_t payloadSize,
                                                 tStatus& status) noexcept {
  tSendCommandRequest request{};
  request.payload = payload;
  request.payloadSize = payloadSize;
  call<tStatusReply>(REQUEST_CONTROLLER_SEND_COMMAND, request, kSendCommand, status);
}

void tInterfaceProxy_hostController::getAttribute(uint32_t attribute, uint64_t buffer,
                                                  uint32_t& size, tStatus& status) noexcept {
  tGetAttributeRequest request{};
  request.attribute = attribute;
  request.buffer = buffer;
  request.size = size;
  call<tGetAttributeReply>(
      REQUEST_GET_ATTRIBUTE, request, kGetAttribute, status,
      [&size](const tGetAttributeReply& reply) noexcept { size = reply.size; });
}

void tInterfaceProxy_hostController::setAttribute(uint32_t attribute, uint64_t buffer, int32_t size,
                                                  tStatus& status) noexcept {
  tSetAttributeRequest request{};
  request.attribute = attribute;
  request.buffer = buffer;
  request.size = size;
  call<tStatusReply>(REQUEST_SET_ATTRIBUTE, request, kSetAttribute, status);
}

}  // namespace nQUENRA1400::nZOAPAL000
