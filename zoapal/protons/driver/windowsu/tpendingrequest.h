#ifndef ZOAPAL_PROTONS_DRIVER_WINDOWSU_TPENDINGREQUEST_H
#define ZOAPAL_PROTONS_DRIVER_WINDOWSU_TPENDINGREQUEST_H

#include <windows.h>

#include <cstdint>
#include <memory>

#include "protocol/pendingrequests.h"
#include "zoapal/protons/handles/windowsu/tuniquehandle.h"
#include "zoapal/protons/status/tstatus.h"

namespace nQUENRA1400::nZOAPAL000 {

// Shared by a pending request and its worker thread, and alive as long as either of them: a worker whose
// request the driver does not complete outlives the request object, and the driver writes into this
// one.
struct tPendingWork {
  HANDLE file;  // not owned; the worker does not use the proxy, which may no longer exist
  nZOAPALS100::tStatus status;  // of the worker; read after its end
  uint64_t handle = 0;          // written by the driver
  bool wide;                    // selects the form to send
  tPendingNarrowRequest narrowForm{};
  tPendingWideRequest wideForm{};

  // The worker's share until the worker owns it.
  std::shared_ptr<tPendingWork> workersShare;
};

// Null, with kMemoryFull in the status, when memory is short. The driver signals the event `accepted`.
[[nodiscard]] std::shared_ptr<tPendingWork> makePendingWork(HANDLE file, HANDLE accepted,
                                                            uint16_t a, uint64_t b, uint8_t c,
                                                            nZOAPALS100::tStatus& status) noexcept;

// Starts a thread that sends the request and ends when the driver completes it. On failure the handle is
// empty, with the mapped error in the status.
[[nodiscard]] tUniqueThread startWorker(const std::shared_ptr<tPendingWork>& work,
                                        nZOAPALS100::tStatus& status) noexcept;

// A request that the driver keeps pending. Its owner ends it with iInterfaceProxy::endPendingRequest on
// the proxy that began it. Destroying the object does not: the request then stays pending until its
// device is closed.
class tPendingRequest {
 public:
  // The driver's handle of the request; 0 when none is pending.
  [[nodiscard]] uint64_t handle() const noexcept { return handle_; }

 private:
  friend class tDeviceInterfaceProxy;

  std::shared_ptr<tPendingWork> work_;
  tUniqueThread worker_;
  uint64_t handle_ = 0;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
