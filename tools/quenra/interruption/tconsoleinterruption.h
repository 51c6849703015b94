#ifndef TOOLS_QUENRA_INTERRUPTION_TCONSOLEINTERRUPTION_H
#define TOOLS_QUENRA_INTERRUPTION_TCONSOLEINTERRUPTION_H

#include "tools/quenra/interruption/iinterruption.h"

namespace nCommandLine {

// Ctrl-C, Ctrl-Break, a closed console, log-off and shutdown.
class tConsoleInterruption final : public iInterruption {
 public:
  void await() noexcept override;
  [[nodiscard]] bool hasCome() noexcept override;
};

}  // namespace nCommandLine

#endif
