#ifndef SOURCE_USER_EXPORTS_TPROCESSSTATE_H
#define SOURCE_USER_EXPORTS_TPROCESSSTATE_H

#include "source/user/session/tcontrollerusersession.h"
#include "zoapal/protons/status/tstatus.h"
#include "zoapal/protons/status/zoerrstatus.h"
#include "zoapal/protons/synchronization/windowsu/tcriticalsection.h"
#include "zosmbios/czosmbioswindowsprovider.h"

namespace nQUENRA1400 {

// What the library keeps for the whole process: how loading it went, the lock, and the one session.
//
// It is constant-initialised; the library's loading and unloading call load() and unload(), which
// do no more than make and end the lock. A session that is still open when the library is unloaded
// is left alone: its driver connections end with the process, and closing them from inside the
// loader could wait for threads that are no more.
class tProcessState {
 public:
  constexpr tProcessState() noexcept = default;

  void load() noexcept;
  void unload() noexcept;

  // Reports a failed load.
  void mergeLoadStatus(zoerr::Status& status) const noexcept { status.mergeFrom(loadStatus_); }
  [[nodiscard]] bool isLoaded() const noexcept { return !loadStatus_.isError(); }

  // Opens the session or counts one more user. Only with isLoaded.
  void open(zoerr::Status& status) noexcept;
  // Drops one user, if there is any. Only with isLoaded.
  void close() noexcept;
  // Null, with kInvalidHandle in the status, when none is open. Only with isLoaded.
  [[nodiscard]] tControllerUserSession* session(zoerr::Status& status) noexcept;

 private:
  nZOAPALS100::tStatus loadStatus_;
  nZOAPAL000::tCriticalSection lock_;
  nZOSMBIOS_1_1::cZoSmBiosWindowsProvider provider_;
  tControllerUserSession* session_ ZOAPAL_THREAD_ANNOTATION(guarded_by(lock_)) = nullptr;
};

// The state of this process.
[[nodiscard]] tProcessState& processState() noexcept;

}  // namespace nQUENRA1400

#endif
