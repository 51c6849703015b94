#ifndef TOOLS_QUENRA_INTERRUPTION_TCONSOLEINTERRUPTION_H
#define TOOLS_QUENRA_INTERRUPTION_TCONSOLEINTERRUPTION_H

#include "tools/quenra/interruption/iinterruption.h"

namespace nCommandLine {

// Ctrl-C, Ctrl-Break, and the end of the console, of the session or of the system.
class tConsoleInterruption final : public iInterruption {
 public:
  void await() noexcept override;
  [[nodiscard]] bool hasCome() noexcept override;
};

}  // namespace nCommandLine

#endif
