#include "tools/quenra/update/updaterun.h"

#include <algorithm>
#include <future>
#include <string>

#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/output/streams.h"

namespace nCommandLine {
namespace {

constexpr std::chrono::milliseconds kInterval(100);

tLockState waitForEnd(iUpdateLock& lock, iInterruption& interruption, std::ostream& error) {
  error << "quenra: another update is running; waiting for its end (Ctrl-C ends the wait)"
        << std::endl;
  interruption.intercept();
  tLockState state = tLockState::busy;
  while (state == tLockState::busy) {
    if (interruption.hasOccurred()) {
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
                                 std::ostream& error, bool waits,
                                 const std::function<void()>& onWaiting)
    : lock_(lock) {
  tLockState state = lock.acquire(std::chrono::milliseconds(0));
  if (state == tLockState::busy && !waits) {
    throw tCommandError(tExitCode::failure, "another update is running on this machine",
                        std::nullopt, "Without --no-wait this update waits for its end.");
  }
  if (state == tLockState::busy) {
    if (onWaiting) {
      onWaiting();
    }
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

int32_t tProgress::run(const std::function<int32_t()>& call) {
  interruption_.intercept();
  const tStopwatch stopwatch;
  nextLine_ = rhythm_.elsewhere;
  std::future<int32_t> result = std::async(std::launch::async, call);
  const auto timeout = std::min(rhythm_.onTerminal, rhythm_.elsewhere);
  while (result.wait_for(timeout) != std::future_status::ready) {
    elapsed_ = stopwatch.elapsed();
    show();
    answerInterruption();
  }
  elapsed_ = stopwatch.elapsed();
  if (!isSilent_ && streams_.outIsTerminal) {
    show();
    streams_.out << '\n';
  }
  return result.get();
}

void tProgress::show() {
  if (isSilent_) {
    if (report_ && elapsed_ >= nextLine_) {
      report_(elapsed_);
      nextLine_ += rhythm_.elsewhere;
    }
    return;
  }
  if (streams_.outIsTerminal) {
    streams_.out << '\r' << name_ << ": " << elapsedText(elapsed_) << std::flush;
  } else if (elapsed_ >= nextLine_) {
    streams_.out << name_ << ": " << elapsedText(elapsed_) << std::endl;
    nextLine_ += rhythm_.elsewhere;
  }
}

void tProgress::answerInterruption() {
  if (interruption_.hasOccurred() && !interruptionAnswered_) {
    interruptionAnswered_ = true;
    streams_.error << (streams_.outIsTerminal && !isSilent_ ? "\n" : "")
                   << "quenra: the update cannot be interrupted; wait for its end" << std::endl;
  }
}

}  // namespace nCommandLine
