#ifndef TOOLS_QUENRA_INTERRUPTION_IINTERRUPTION_H
#define TOOLS_QUENRA_INTERRUPTION_IINTERRUPTION_H

namespace nCommandLine {

// A request to end the program: Ctrl-C, or a closed console.
class iInterruption {
 public:
  iInterruption() = default;
  iInterruption(const iInterruption&) = delete;
  iInterruption& operator=(const iInterruption&) = delete;
  virtual ~iInterruption() = default;

  // From this call on, an interruption no longer ends the program; the program polls hasCome.
  virtual void await() noexcept = 0;
  [[nodiscard]] virtual bool hasCome() noexcept = 0;
};

}  // namespace nCommandLine

#endif
