#ifndef ZOAPAL_PROTONS_DRIVER_WINDOWSU_TDEVICEINTERFACEPROXY_H
#define ZOAPAL_PROTONS_DRIVER_WINDOWSU_TDEVICEINTERFACEPROXY_H

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>

#include "zoapal/protons/driver/iinterfaceproxy.h"
#include "zoapal/protons/driver/windowsu/tpendingrequest.h"
#include "zoapal/protons/driver/windowsu/tportregistry.h"
#include "zoapal/protons/handles/windowsu/tuniquehandle.h"
#include "zoapal/protons/synchronization/windowsu/locks.h"

namespace nQUENRA1400::nZOAPAL000 {

// The path of a device interface.
struct tDevicePath {
  static constexpr uint32_t kCapacity = 256;

  char text[kCapacity] = {};  // always NUL-terminated
  uint32_t length = 0;        // with the NUL; 0 when there is no path

  [[nodiscard]] bool isEmpty() const noexcept { return length == 0; }
};

// The library's one channel to the kernel driver: an open handle on one device interface.
//
// Failures arrive as mapped Windows errors, located at "tdeviceinterfaceproxy". deviceControl, read,
// write and the beginning and ending of pending requests may overlap on one proxy; open and close may
// not overlap any of these. Closing cancels the requests that are still pending and does not wait for
// them; the reader of the port has ended by then.
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

  // For notifications (io_notification/).

  // INVALID_HANDLE_VALUE when the proxy is closed. Borrowed.
  [[nodiscard]] HANDLE file() const noexcept { return file_.get(); }
  // Associates the device with a completion port, once, and arms the delivery of the next notice
  // unless it is armed. Returns true if the device is associated with this port, also when arming
  // has failed; the next call arms again. Any thread.
  bool associate(const std::shared_ptr<tPortRegistry>& registry, HANDLE port,
                 nZOAPALS100::tStatus& status) noexcept;
  // Makes the driver deliver the next notice. Does nothing while a delivery is armed or read.
  void armDelivery(nZOAPALS100::tStatus& status) noexcept;
  // Starts a request, which is in the registry of the port, and does not wait for its end. Returns the
  // Windows error with which the call failed, 0 when it set none, or nothing if the request was started.
  [[nodiscard]] std::optional<DWORD> startRequest(uint32_t code, const void* in, uint32_t inSize,
                                                  void* out, uint32_t outSize,
                                                  tPortRequest& request) noexcept;

 private:
  [[nodiscard]] bool createAssociation(const std::shared_ptr<tPortRegistry>& registry, HANDLE port,
                                       nZOAPALS100::tStatus& status) noexcept;

  tUniqueFile file_;
  tUniqueEvent event_;  // manual-reset; signalled when a transfer ends
  std::atomic_flag eventInUse_;
  tSlimLock associating_;
  HANDLE completionPort_ = nullptr;  // with which the file is associated; guarded by associating_
  // Of that port. Ports are compared by their registry, because a handle value can be used again.
  std::shared_ptr<tPortRegistry> registry_;
  std::shared_ptr<tDelivery> delivery_;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
