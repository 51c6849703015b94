#ifndef ZOAPAL_PROTONS_DRIVER_WINDOWSU_TDEVICEINTERFACEPROXY_H
#define ZOAPAL_PROTONS_DRIVER_WINDOWSU_TDEVICEINTERFACEPROXY_H

#include <windows.h>

#include <atomic>

#include "zoapal/protons/driver/iinterfaceproxy.h"
#include "zoapal/protons/driver/tdevicepath.h"
#include "zoapal/protons/driver/windowsu/tpendingrequest.h"
#include "zoapal/protons/driver/windowsu/transfer.h"
#include "zoapal/protons/handles/windowsu/tuniquehandle.h"

namespace nQUENRA1400::nZOAPAL000 {

// The library's one channel to the kernel driver: an open handle on one device interface.
//
// Failures arrive as mapped Windows errors, located at "tdeviceinterfaceproxy". deviceControl, read,
// write and the beginning and ending of pending requests may overlap on one proxy; open and close may
// not overlap any of these. Closing cancels the requests that are still pending.
class tDeviceInterfaceProxy : public virtual iInterfaceProxy {
 public:
  tDeviceInterfaceProxy() = default;
  ~tDeviceInterfaceProxy() override;

  [[nodiscard]] virtual bool isOpen() const noexcept;
  // A failed open leaves the proxy closed. Opening an open proxy closes it first.
  virtual void open(const char* path, nZOAPALS100::tStatus& status) noexcept;
  virtual void open(const tDevicePath& path, nZOAPALS100::tStatus& status) noexcept;

  void close() noexcept override;
  uint32_t deviceControl(uint32_t code, const void* in, uint32_t inSize, void* out,
                         uint32_t outSize, nZOAPALS100::tStatus& status) noexcept override;
  uint32_t read(void* buffer, uint32_t size, nZOAPALS100::tStatus& status) noexcept override;
  uint32_t write(const void* buffer, uint32_t size, nZOAPALS100::tStatus& status) noexcept override;

  uint64_t beginPendingRequest(uint16_t a, uint64_t b, uint8_t c, tPendingRequest& request,
                               nZOAPALS100::tStatus& status) noexcept override;
  void endPendingRequest(tPendingRequest& request) noexcept override;

 private:
  template <class Transfer>
  uint32_t transfer(tTransferLines lines, nZOAPALS100::tStatus& status, Transfer carryOut) noexcept;

  tUniqueFile file_;
  tUniqueEvent event_;  // manual-reset; signalled when a transfer ends
  std::atomic_flag eventInUse_;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
