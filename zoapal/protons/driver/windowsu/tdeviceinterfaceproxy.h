#ifndef ZOAPAL_PROTONS_DRIVER_WINDOWSU_TDEVICEINTERFACEPROXY_H
#define ZOAPAL_PROTONS_DRIVER_WINDOWSU_TDEVICEINTERFACEPROXY_H

#include <windows.h>

#include <atomic>
#include <memory>
#include <optional>

#include "zoapal/protons/driver/iinterfaceproxy.h"
#include "zoapal/protons/driver/tdevicepath.h"
#include "zoapal/protons/driver/windowsu/tdelivery.h"
#include "zoapal/protons/driver/windowsu/tpendingrequest.h"
#include "zoapal/protons/driver/windowsu/transfer.h"
#include "zoapal/protons/handles/windowsu/tuniquehandle.h"
#include "zoapal/protons/synchronization/windowsu/tslimlock.h"

namespace nQUENRA1400::nZOAPAL000 {

// The library's one channel to the kernel driver: an open handle on one device interface.
//
// Failures arrive as mapped Windows errors, located at "tdeviceinterfaceproxy". deviceControl, read,
// write and the beginning and ending of pending requests may overlap on one proxy; open and close may
// not overlap any of these. Closing cancels the requests that are still pending; whoever reads the port
// has ended by then.
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

  // For notifications (io_notification/). Lets the notices of this device arrive at a completion
  // port, and arms the delivery of the first, unless the port has them already. False when they do
  // not arrive there. Any thread.
  bool associate(HANDLE port, nZOAPALS100::tStatus& status) noexcept;
  // Has the driver deliver the next notice.
  void armDelivery(nZOAPALS100::tStatus& status) noexcept;
  // Starts a request without a reply whose completion arrives at the port. Gives the Windows error
  // with which it failed at once, if it did; 0 when the system does not tell one. `overlapped` is the
  // system's until it completes.
  [[nodiscard]] std::optional<DWORD> startRequest(uint32_t code, const void* in, uint32_t inSize,
                                                  OVERLAPPED& overlapped) noexcept;
  // Cancels such a request and waits a while for its end. False when it is still under way: its
  // memory must then stay.
  [[nodiscard]] bool cancelRequest(OVERLAPPED& overlapped) noexcept;

 private:
  template <class Transfer>
  uint32_t transfer(tTransferLines lines, nZOAPALS100::tStatus& status, Transfer carryOut) noexcept;
  [[nodiscard]] std::optional<DWORD> start(uint32_t code, const void* in, uint32_t inSize,
                                           void* out, uint32_t outSize,
                                           OVERLAPPED& overlapped) noexcept;

  tUniqueFile file_;
  tUniqueEvent event_;  // manual-reset; signalled when a transfer ends
  std::atomic_flag eventInUse_;
  tSlimLock associating_;
  std::atomic<HANDLE> completionPort_ = nullptr;
  std::unique_ptr<tDelivery> delivery_;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
