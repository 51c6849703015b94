#ifndef TOOLS_QUENRA_UPDATE_TPROGRESS_H
#define TOOLS_QUENRA_UPDATE_TPROGRESS_H

#include <chrono>
#include <cstdint>
#include <functional>

#include "tools/quenra/interruption/iinterruption.h"
#include "tools/quenra/output/streams.h"

namespace nCommandLine {

// How often the elapsed time is told.
struct tRhythm {
  std::chrono::milliseconds onTerminal{100};   // in one line that changes
  std::chrono::milliseconds elsewhere{10000};  // in lines of their own
};

// Shows that something takes its time, on the standard output.
class tProgress {
 public:
  // `name` is what is being done: "updating".
  tProgress(std::string_view name, tStreams& streams, iInterruption& interruption,
            bool isSilent = false, tRhythm rhythm = {})
      : name_(name),
        streams_(streams),
        interruption_(interruption),
        isSilent_(isSilent),
        rhythm_(rhythm) {}

  // Runs the call on a thread of its own and returns what it returned. An interruption meanwhile is
  // answered with a message and changes nothing. Throws where there are no more threads, before
  // anything was called.
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
  std::chrono::milliseconds elapsed_{0};
  std::chrono::milliseconds nextLine_{0};
  bool interruptionAnswered_ = false;
};

}  // namespace nCommandLine

#endif
