#ifndef TESTS_COMPONENT_COMMANDLINE_TSCRIPTEDINTERRUPTION_H
#define TESTS_COMPONENT_COMMANDLINE_TSCRIPTEDINTERRUPTION_H

#include "tools/quenra/interruption/iinterruption.h"

namespace nTests {

// A user who presses Ctrl-C at once, or never.
class tScriptedInterruption final : public nCommandLine::iInterruption {
 public:
  void await() noexcept override { isAwaited = true; }
  [[nodiscard]] bool hasCome() noexcept override { return isAwaited && comes; }

  bool isAwaited = false;
  bool comes = false;
};

}  // namespace nTests

#endif
