#ifndef ZOAPAL_PROTONS_DRIVER_WINDOWSU_TTRANSFEREVENT_H
#define ZOAPAL_PROTONS_DRIVER_WINDOWSU_TTRANSFEREVENT_H

#include <windows.h>

#include <atomic>

#include "zoapal/protons/handles/windowsu/tuniquehandle.h"

namespace nQUENRA1400::nZOAPAL000 {

// The event of one transfer. A proxy keeps one event for its transfers; a transfer that overlaps
// another brings its own, since an event that two transfers share tells neither that it has ended.
class tTransferEvent {
 public:
  tTransferEvent(HANDLE shared, std::atomic_flag& sharedInUse) noexcept
      : sharedInUse_(sharedInUse), borrowed_(!sharedInUse.test_and_set(std::memory_order_acquire)) {
    if (borrowed_) {
      handle_ = shared;
    } else {
      own_.reset(CreateEventA(nullptr, TRUE, FALSE, nullptr));
      handle_ = own_.get();
    }
  }
  tTransferEvent(const tTransferEvent&) = delete;
  tTransferEvent& operator=(const tTransferEvent&) = delete;
  ~tTransferEvent() {
    if (borrowed_) {
      sharedInUse_.clear(std::memory_order_release);
    }
  }

  // Null when an event could not be created; the last error tells why.
  [[nodiscard]] HANDLE get() const noexcept { return handle_; }

 private:
  std::atomic_flag& sharedInUse_;
  bool borrowed_;
  tUniqueEvent own_;
  HANDLE handle_ = nullptr;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
