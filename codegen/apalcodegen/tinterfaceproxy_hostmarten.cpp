#include "codegen/apalcodegen/tinterfaceproxy_hostmarten.h"

#include "codegen/apalcodegen/attributerequests.h"

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
  requestSendCommand(*this, REQUEST_MARTEN_SEND_COMMAND, payload, payloadSize, kSendCommand,
                     status);
}

void tInterfaceProxy_hostMarten::getAttribute(uint32_t attribute, uint64_t buffer, uint32_t& size,
                                              tStatus& status) noexcept {
  requestGetAttribute(*this, attribute, buffer, size, kGetAttribute, status);
}

void tInterfaceProxy_hostMarten::setAttribute(uint32_t attribute, uint64_t buffer, int32_t size,
                                              tStatus& status) noexcept {
  requestSetAttribute(*this, attribute, buffer, size, kSetAttribute, status);
}

}  // namespace nQUENRA1400::nZOAPAL000
