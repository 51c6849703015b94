#ifndef TOOLS_QUENRA_INTERRUPTION_IINTERRUPTION_H
#define TOOLS_QUENRA_INTERRUPTION_IINTERRUPTION_H

namespace nCommandLine {

// The user's wish that the program ends: Ctrl-C, or a console that is closed.
class iInterruption {
 public:
  iInterruption() = default;
  iInterruption(const iInterruption&) = delete;
  iInterruption& operator=(const iInterruption&) = delete;
  virtual ~iInterruption() = default;

  // From now on the program is not ended by it, but asks.
  virtual void await() noexcept = 0;
  [[nodiscard]] virtual bool hasCome() noexcept = 0;
};

}  // namespace nCommandLine

#endif
