#ifndef CODEGEN_APALCODEGEN_MARSHALLING_H
#define CODEGEN_APALCODEGEN_MARSHALLING_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

#include "zoapal/protons/driver/iinterfaceproxy.h"
#include "zoapal/protons/status/tstatus.h"

namespace nQUENRA1400::nZOAPAL000 {

// Sends a request and waits for the reply. A reply shorter than `reply` leaves zeros behind what
// came. False when the status holds an error, when nothing is sent, or when the request itself
// failed, which is then merged into the status with the place where it failed.
[[nodiscard]] bool sendRequest(iInterfaceProxy& device, uint32_t code,
                               std::span<const std::byte> request, std::span<std::byte> reply,
                               nZOAPALS100::tStatus& status) noexcept;

// One typed call: the request takes along the caller's status code. When the driver has answered,
// `takeReply` copies the out-values, also when the driver reports an error; then the driver's own
// code is merged at `site`.
template <class Reply, class Request, class TakeReply>
void call(iInterfaceProxy& device, uint32_t code, Request request,
          const nZOAPALS100::tSourceLocation& site, nZOAPALS100::tStatus& status,
          TakeReply takeReply) noexcept {
  static_assert(std::has_unique_object_representations_v<Request>,
                "padding has to be a member, so that it travels as zeros");
  static_assert(std::has_unique_object_representations_v<Reply>);
  request.callerStatus = status.code;
  Reply reply{};
  if (sendRequest(device, code, std::as_bytes(std::span(&request, 1)),
                  std::as_writable_bytes(std::span(&reply, 1)), status)) {
    takeReply(reply);
    mergeStatus(status, reply.driverStatus, site);
  }
}

// The same for a request that returns nothing but the driver's code.
template <class Reply, class Request>
void call(iInterfaceProxy& device, uint32_t code, const Request& request,
          const nZOAPALS100::tSourceLocation& site, nZOAPALS100::tStatus& status) noexcept {
  call<Reply>(device, code, request, site, status, [](const Reply&) noexcept {});
}

}  // namespace nQUENRA1400::nZOAPAL000

#endif
