#ifndef CODEGEN_APALCODEGEN_MARSHALLING_H
#define CODEGEN_APALCODEGEN_MARSHALLING_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

#include "zoapal/protons/driver/iinterfaceproxy.h"
#include "zoapal/protons/status/tstatus.h"

namespace nQUENRA1400::nZOAPAL000 {

class tDeviceInterfaceProxy;

// Sends a request and waits for the reply. Bytes of `reply` that the driver does not fill are zero.
// Returns false if the status holds an error, in which case nothing is sent, or if the request itself
// fails, which is merged into the status with its location.
[[nodiscard]] bool sendRequest(iInterfaceProxy& device, uint32_t code,
                               std::span<const std::byte> request, std::span<std::byte> reply,
                               nZOAPALS100::tStatus& status) noexcept;

// The base of the typed interfaces: sends their calls to the device. Each is a channel itself and forwards
// untyped operations unchanged. Refers to the device and owns nothing.
class tForwardingInterfaceProxy : public virtual iInterfaceProxy {
 public:
  explicit tForwardingInterfaceProxy(tDeviceInterfaceProxy& device) noexcept;

  void close() noexcept override;
  uint32_t deviceControl(uint32_t code, const void* in, uint32_t inSize, void* out,
                         uint32_t outSize, nZOAPALS100::tStatus& status) noexcept override;
  uint32_t read(void* buffer, uint32_t size, nZOAPALS100::tStatus& status) noexcept override;
  uint32_t write(const void* buffer, uint32_t size, nZOAPALS100::tStatus& status) noexcept override;
  uint64_t beginPendingRequest(uint16_t a, uint64_t b, uint8_t c, tPendingRequest& request,
                               nZOAPALS100::tStatus& status) noexcept override;
  void endPendingRequest(tPendingRequest& request) noexcept override;

 protected:
  // One typed call. The request contains the caller's status code. After a reply, also one that reports
  // an error, `takeReply` copies the out-values; then the driver's own code is merged at `site`.
  // A request that fails leaves the out-values unchanged.
  template <class Reply, class Request, class TakeReply>
  void call(uint32_t code, Request request, const nZOAPALS100::tSourceLocation& site,
            nZOAPALS100::tStatus& status, TakeReply takeReply) noexcept {
    static_assert(std::has_unique_object_representations_v<Request>,
                  "padding has to be a member, so that it travels as zeros");
    static_assert(std::has_unique_object_representations_v<Reply>);
    request.callerStatus = status.code;
    Reply reply{};
    if (sendRequest(device_, code, std::as_bytes(std::span(&request, 1)),
                    std::as_writable_bytes(std::span(&reply, 1)), status)) {
      takeReply(reply);
      mergeStatus(status, reply.driverStatus, site);
    }
  }

  // The same for a request that returns the driver's code only.
  template <class Reply, class Request>
  void call(uint32_t code, const Request& request, const nZOAPALS100::tSourceLocation& site,
            nZOAPALS100::tStatus& status) noexcept {
    call<Reply>(code, request, site, status, [](const Reply&) noexcept {});
  }

 private:
  iInterfaceProxy& device_;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
