#include "tools/quenra/update/tprogress.h"

#include <algorithm>
#include <future>

#include "tools/quenra/output/waiting.h"

namespace nCommandLine {

int32_t tProgress::run(const std::function<int32_t()>& call) {
  interruption_.await();
  const tStopwatch stopwatch;
  nextLine_ = rhythm_.elsewhere;
  std::future<int32_t> result = std::async(std::launch::async, call);
  const auto patience = std::min(rhythm_.onTerminal, rhythm_.elsewhere);
  while (result.wait_for(patience) != std::future_status::ready) {
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
  if (interruption_.hasCome() && !interruptionAnswered_) {
    interruptionAnswered_ = true;
    streams_.error << (streams_.outIsTerminal && !isSilent_ ? "\n" : "")
                   << "quenra: this cannot be stopped half-way; wait until it is over" << std::endl;
  }
}

}  // namespace nCommandLine
