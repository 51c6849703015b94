#ifndef TESTS_COMPONENT_COMMANDLINE_TSCRIPTEDINTERRUPTION_H
#define TESTS_COMPONENT_COMMANDLINE_TSCRIPTEDINTERRUPTION_H

#include <atomic>
#include <chrono>
#include <thread>

#include "tools/quenra/output/waiting.h"

namespace nTests {

// A user who presses Ctrl-C immediately or never.
class tScriptedInterruption final : public nCommandLine::iInterruption {
 public:
  void await() noexcept override { isAwaited = true; }
  [[nodiscard]] bool hasCome() noexcept override {
    ++asked;
    return isAwaited && comes;
  }
  // For another thread: waits until hasCome() was called this many times.
  void waitUntilAsked(int times) const {
    while (asked < times) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }

  bool isAwaited = false;
  bool comes = false;
  std::atomic<int> asked = 0;
};

}  // namespace nTests

#endif
