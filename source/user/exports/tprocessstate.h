#ifndef SOURCE_USER_EXPORTS_TPROCESSSTATE_H
#define SOURCE_USER_EXPORTS_TPROCESSSTATE_H

#include <atomic>

#include "source/user/session/tcontrollerusersession.h"
#include "zoapal/protons/startup/processlifetime.h"
#include "zoapal/protons/status/zoerrstatus.h"
#include "zoapal/protons/synchronization/windowsu/locks.h"
#include "zosmbios/czosmbioswindowsprovider.h"

namespace nQUENRA1400 {

// The process-wide state of the controller exports: the session lock, the SMBIOS provider and the one
// session.
//
// Constant-initialised. Loading and unloading the library call load() and unload(), which create and
// delete the lock and record that in the start-up state. A session that is still open when the library
// is unloaded stays as it is: its driver connections end with the process, and closing them inside the
// loader could wait for threads that no longer exist.
class tProcessState {
 public:
  explicit constexpr tProcessState(nZOAPAL000::tStartUp& startUp) noexcept : startUp_(startUp) {}

  void load() noexcept;
  // Runs in the loader: no other thread is inside the library.
  void unload() noexcept;

  [[nodiscard]] const nZOAPAL000::tStartUp& startUp() const noexcept { return startUp_; }

  // The following functions require a start-up state that is ready.

  // Opens the session or counts one more user.
  void open(zoerr::Status& status) noexcept;
  // Drops one user of an open session.
  void close() noexcept;
  // Null, with QUENRA_STATUS_INVALID_HANDLE in the status, when none is open. An open session is found
  // without the lock; a caller during the first open waits for its result.
  [[nodiscard]] tControllerUserSession* session(zoerr::Status& status) noexcept {
    tControllerUserSession* const open = session_.load(std::memory_order_acquire);
    return open != nullptr ? open : awaitSession(status);
  }

 private:
  // Waits for a session that another thread is opening.
  [[nodiscard]] tControllerUserSession* awaitSession(zoerr::Status& status) noexcept;

  nZOAPAL000::tStartUp& startUp_;
  nZOAPAL000::tCriticalSection lock_;
  nZOSMBIOS_1_1::cZoSmBiosWindowsProvider provider_;
  // Written under the lock only. A session is published after its construction, and its pointer is
  // cleared before its destruction.
  std::atomic<tControllerUserSession*> session_ = nullptr;
};

extern constinit nZOAPAL000::tNeverDestroyed<tProcessState> theProcessState;

// The state of this process.
[[nodiscard]] inline tProcessState& processState() noexcept {
  return theProcessState.get();
}

}  // namespace nQUENRA1400

#endif
