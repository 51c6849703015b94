#ifndef ZOAPAL_PROTONS_DRIVER_WINDOWSU_PENDINGWORK_H
#define ZOAPAL_PROTONS_DRIVER_WINDOWSU_PENDINGWORK_H

#include <windows.h>

#include <memory>

#include "protocol/pendingrequests.h"
#include "zoapal/protons/handles/windowsu/tuniquehandle.h"
#include "zoapal/protons/status/tstatus.h"

namespace nQUENRA1400::nZOAPAL000 {

// What a pending request and its worker thread share. It lives as long as either of them: a worker
// whose request the driver did not end outlives whoever began it, and the driver writes into it.
struct tPendingWork {
  HANDLE file;                  // borrowed; the worker does not touch the proxy, which may be gone
  nZOAPALS100::tStatus status;  // the worker's own, to be read when it has ended
  uint64_t handle = 0;          // written by the driver
  bool wide;                    // which of the two forms is sent
  tPendingNarrowRequest narrowForm{};
  tPendingWideRequest wideForm{};

  // Keeps the worker's share until it has taken it over.
  std::shared_ptr<tPendingWork> workersShare;
};

// Null, with kMemoryFull in the status, when memory is short. `accepted` is the event that the driver
// is to signal.
[[nodiscard]] std::shared_ptr<tPendingWork> makePendingWork(HANDLE file, HANDLE accepted,
                                                            uint16_t a, uint64_t b, uint8_t c,
                                                            nZOAPALS100::tStatus& status) noexcept;

// A thread that sends the request and ends when the driver completes it. On failure none, with the
// mapped error in the status.
[[nodiscard]] tUniqueThread startWorker(const std::shared_ptr<tPendingWork>& work,
                                        nZOAPALS100::tStatus& status) noexcept;

}  // namespace nQUENRA1400::nZOAPAL000

#endif
