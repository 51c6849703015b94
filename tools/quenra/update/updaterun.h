// The lock and the progress of a running update.
#ifndef TOOLS_QUENRA_UPDATE_UPDATERUN_H
#define TOOLS_QUENRA_UPDATE_UPDATERUN_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <ostream>
#include <utility>

#include "tools/quenra/output/streams.h"
#include "tools/quenra/update/updateports.h"

namespace nCommandLine {

// Holds the lock of updates. Concurrent updates would mix their firmware and restore each other's
// version marker.
class tHeldUpdateLock {
 public:
  // If another update holds the lock, prints a message to `error` and waits; throws tCommandError
  // instead if `waits` is false. Also throws it on an interruption and on a failure of the lock.
  // Calls `onWaiting`, unless it is empty, before it waits.
  tHeldUpdateLock(iUpdateLock& lock, iInterruption& interruption, std::ostream& error, bool waits,
                  const std::function<void()>& onWaiting = nullptr);
  tHeldUpdateLock(const tHeldUpdateLock&) = delete;
  tHeldUpdateLock& operator=(const tHeldUpdateLock&) = delete;
  ~tHeldUpdateLock() { lock_.release(); }

 private:
  iUpdateLock& lock_;
};

// The interval at which the elapsed time is printed.
struct tRhythm {
  std::chrono::milliseconds onTerminal{100};   // rewrites one line
  std::chrono::milliseconds elsewhere{10000};  // prints a new line each time
};

// Runs a long operation and prints its elapsed time to the standard output.
class tProgress {
 public:
  // `name` is the operation: "updating".
  tProgress(std::string_view name, tStreams& streams, iInterruption& interruption,
            bool isSilent = false, tRhythm rhythm = {})
      : name_(name),
        streams_(streams),
        interruption_(interruption),
        isSilent_(isSilent),
        rhythm_(rhythm) {}

  // Called with the elapsed time at the interval of the output that is no terminal.
  void setReport(std::function<void(std::chrono::milliseconds)> report) {
    report_ = std::move(report);
  }

  // Runs `call` on a separate thread and returns its result. An interruption meanwhile only prints
  // a message; the operation continues. Throws before it starts `call` if the thread cannot be
  // created.
  int32_t run(const std::function<int32_t()>& call);

  [[nodiscard]] std::chrono::milliseconds elapsed() const noexcept { return elapsed_; }

 private:
  void show();
  void answerInterruption();

  std::string_view name_;
  tStreams& streams_;
  iInterruption& interruption_;
  bool isSilent_;
  tRhythm rhythm_;
  std::function<void(std::chrono::milliseconds)> report_;
  std::chrono::milliseconds elapsed_{0};
  std::chrono::milliseconds nextLine_{0};
  bool interruptionAnswered_ = false;
};

}  // namespace nCommandLine

#endif
