#include "tools/quenra/update/theldupdatelock.h"

#include <string>

#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/output/streams.h"

namespace nCommandLine {
namespace {

constexpr std::chrono::milliseconds kInterval(100);

tLockState waitForEnd(iUpdateLock& lock, iInterruption& interruption, std::ostream& error) {
  error << "quenra: another update is running; waiting for its end (Ctrl-C ends the wait)"
        << std::endl;
  interruption.await();
  tLockState state = tLockState::busy;
  while (state == tLockState::busy) {
    if (interruption.hasCome()) {
      throw tCommandError(tExitCode::failure,
                          "interrupted while another update was running; nothing was changed",
                          std::nullopt);
    }
    state = lock.acquire(kInterval);
  }
  return state;
}

}  // namespace

tHeldUpdateLock::tHeldUpdateLock(iUpdateLock& lock, iInterruption& interruption,
                                 std::ostream& error, bool waits)
    : lock_(lock) {
  tLockState state = lock.acquire(std::chrono::milliseconds(0));
  if (state == tLockState::busy && !waits) {
    throw tCommandError(tExitCode::failure, "another update is running on this machine",
                        std::nullopt, "Without --no-wait this update waits for its end.");
  }
  if (state == tLockState::busy) {
    state = waitForEnd(lock, interruption, error);
  }
  if (state == tLockState::failed) {
    throw tCommandError(tExitCode::failure,
                        "cannot use the lock of updates: " + reasonOf(lock.failure()), std::nullopt,
                        "An update of another account may be running. Run the update as an "
                        "administrator.");
  }
  if (state == tLockState::abandoned) {
    error << "quenra: warning: the other update ended abnormally and may be incomplete"
          << std::endl;
  }
}

}  // namespace nCommandLine
