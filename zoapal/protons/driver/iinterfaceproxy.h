#ifndef ZOAPAL_PROTONS_DRIVER_IINTERFACEPROXY_H
#define ZOAPAL_PROTONS_DRIVER_IINTERFACEPROXY_H

#include <cstdint>

#include "zoapal/protons/status/tstatus.h"

namespace nQUENRA1400::nZOAPAL000 {

class tPendingRequest;

// A channel to a driver for the typed interfaces. Operations with a status do nothing and return 0 if
// the status holds an error.
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

  // Starts a request that the driver keeps pending until it is ended. Returns the driver's handle of it
  // when the driver has accepted it. The library does not interpret a, b and c. `request` belongs to the
  // caller and represents the pending request.
  //
  // Returns 0 if the request fails, with the reason in the status. Also 0, without an error, for a request
  // that the driver completes without accepting it. Nothing is pending then.
  virtual uint64_t beginPendingRequest(uint16_t a, uint64_t b, uint8_t c, tPendingRequest& request,
                                       nZOAPALS100::tStatus& status) noexcept = 0;
  // Ends the request and waits for its completion; if the driver refuses, only `request` is released.
  // Does nothing for a request without a handle.
  virtual void endPendingRequest(tPendingRequest& request) noexcept = 0;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
