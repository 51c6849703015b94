#ifndef ZOAPAL_PROTONS_DRIVER_IINTERFACEPROXY_H
#define ZOAPAL_PROTONS_DRIVER_IINTERFACEPROXY_H

#include <cstdint>

#include "zoapal/protons/status/tstatus.h"

namespace nQUENRA1400::nZOAPAL000 {

class tPendingRequest;

// A channel to a driver: what a typed interface needs of it. Operations that take a status do
// nothing and return 0 when it holds an error.
class iInterfaceProxy {
 public:
  iInterfaceProxy() = default;
  iInterfaceProxy(const iInterfaceProxy&) = delete;
  iInterfaceProxy& operator=(const iInterfaceProxy&) = delete;
  virtual ~iInterfaceProxy() = default;

  virtual void close() noexcept = 0;

  // Sends a request and waits for its reply. Sizes in bytes; returns the bytes of the reply. On
  // failure returns 0 and leaves `out` as the driver left it.
  virtual uint32_t deviceControl(uint32_t code, const void* in, uint32_t inSize, void* out,
                                 uint32_t outSize, nZOAPALS100::tStatus& status) noexcept = 0;

  // Both wait, and return the bytes transferred.
  virtual uint32_t read(void* buffer, uint32_t size, nZOAPALS100::tStatus& status) noexcept = 0;
  virtual uint32_t write(const void* buffer, uint32_t size,
                         nZOAPALS100::tStatus& status) noexcept = 0;

  // Starts a request that the driver keeps pending until it is ended, and returns, when the driver
  // has accepted it, the handle that the driver gave it. a, b and c are the driver's to understand.
  // `request` is the caller's and stands for it from then on.
  //
  // 0 when the request has failed: the status tells why. Also 0, without an error, for a request
  // that the driver completes without accepting it. Nothing is pending then.
  virtual uint64_t beginPendingRequest(uint16_t a, uint64_t b, uint8_t c, tPendingRequest& request,
                                       nZOAPALS100::tStatus& status) noexcept = 0;
  // Ends it, and waits until it has ended; when the driver refuses to end it, the caller is free of
  // it all the same. Does nothing for a request without a handle.
  virtual void endPendingRequest(tPendingRequest& request) noexcept = 0;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
