#include "codegen/apalcodegen/marshalling.h"

#include <algorithm>
#include <iterator>

namespace nQUENRA1400::nZOAPAL000 {
namespace {

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

void mergeTransportFailure(const tStatus& transport, tStatus& status) noexcept {
  const bool full = transport.isFull();
  const bool stored = full ? mergeStatus(status, transport.code, transport.component,
                                         transport.file, transport.line)
                           : mergeStatus(status, transport.code, "", "", 0);
  if (stored && full && status.isFull()) {
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

}  // namespace nQUENRA1400::nZOAPAL000
