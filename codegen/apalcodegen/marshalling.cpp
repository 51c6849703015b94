#include "codegen/apalcodegen/marshalling.h"

#include <algorithm>
#include <iterator>

#include "zoapal/protons/driver/windowsu/tdeviceinterfaceproxy.h"

namespace nQUENRA1400::nZOAPAL000 {
namespace {

using nZOAPALS100::tSourceLocation;
using nZOAPALS100::tStatus;

// Up to and including the first zero word.
void copyExtension(const tStatus& from, tStatus& to) noexcept {
  for (size_t i = 0; i < std::size(from.extension); ++i) {
    to.extension[i] = from.extension[i];
    if (from.extension[i] == 0) {
      break;
    }
  }
}

// `status` holds no error, so that of the transport replaces its code.
void mergeTransportFailure(const tStatus& transport, tStatus& status) noexcept {
  const bool full = transport.isFull();
  const tSourceLocation location = full ? transport.location() : tSourceLocation{"", 0, ""};
  mergeStatus(status, transport.code, location);
  if (full && status.isFull()) {
    copyExtension(transport, status);
  }
}

}  // namespace

bool sendRequest(iInterfaceProxy& device, uint32_t code, std::span<const std::byte> request,
                 std::span<std::byte> reply, tStatus& status) noexcept {
  if (status.isError()) {
    return false;
  }
  std::fill(reply.begin(), reply.end(), std::byte{0});
  tStatus transport;
  transport.code = status.code;
  device.deviceControl(code, request.data(), static_cast<uint32_t>(request.size()), reply.data(),
                       static_cast<uint32_t>(reply.size()), transport);
  if (transport.isError()) {
    mergeTransportFailure(transport, status);
    return false;
  }
  return true;
}

tForwardingInterfaceProxy::tForwardingInterfaceProxy(tDeviceInterfaceProxy& device) noexcept
    : device_(device) {}

void tForwardingInterfaceProxy::close() noexcept {
  device_.close();
}

uint32_t tForwardingInterfaceProxy::deviceControl(uint32_t code, const void* in, uint32_t inSize,
                                                  void* out, uint32_t outSize,
                                                  tStatus& status) noexcept {
  return device_.deviceControl(code, in, inSize, out, outSize, status);
}

uint32_t tForwardingInterfaceProxy::read(void* buffer, uint32_t size, tStatus& status) noexcept {
  return device_.read(buffer, size, status);
}

uint32_t tForwardingInterfaceProxy::write(const void* buffer, uint32_t size,
                                          tStatus& status) noexcept {
  return device_.write(buffer, size, status);
}

uint64_t tForwardingInterfaceProxy::beginPendingRequest(uint16_t a, uint64_t b, uint8_t c,
                                                        tPendingRequest& request,
                                                        tStatus& status) noexcept {
  return device_.beginPendingRequest(a, b, c, request, status);
}

void tForwardingInterfaceProxy::endPendingRequest(tPendingRequest& request) noexcept {
  device_.endPendingRequest(request);
}

}  // namespace nQUENRA1400::nZOAPAL000
