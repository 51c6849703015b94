#include "codegen/apalcodegen/tinterfaceproxy_hostcontroller.h"

#include <bit>

#include "codegen/apalcodegen/attributerequests.h"

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
  call<tExchangeValuesReply>(*this, REQUEST_EXCHANGE_VALUES, request, kExchangeValues, status,
                             [&](const tExchangeValuesReply& reply) noexcept {
                               textSize = reply.textSize;
                               tableSize = std::bit_cast<int32_t>(reply.tableSize);
                             });
}

void tInterfaceProxy_hostController::sendCommand(uint64_t payload, uint32_t payloadSize,
                                                 tStatus& status) noexcept {
  requestSendCommand(*this, REQUEST_CONTROLLER_SEND_COMMAND, payload, payloadSize, kSendCommand,
                     status);
}

void tInterfaceProxy_hostController::getAttribute(uint32_t attribute, uint64_t buffer,
                                                  uint32_t& size, tStatus& status) noexcept {
  requestGetAttribute(*this, attribute, buffer, size, kGetAttribute, status);
}

void tInterfaceProxy_hostController::setAttribute(uint32_t attribute, uint64_t buffer, int32_t size,
                                                  tStatus& status) noexcept {
  requestSetAttribute(*this, attribute, buffer, size, kSetAttribute, status);
}

}  // namespace nQUENRA1400::nZOAPAL000
