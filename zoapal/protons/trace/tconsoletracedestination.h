#ifndef ZOAPAL_PROTONS_TRACE_TCONSOLETRACEDESTINATION_H
#define ZOAPAL_PROTONS_TRACE_TCONSOLETRACEDESTINATION_H

#include "zoapal/protons/trace/itracedestination.h"

namespace nQUENRA1400::nZOAPAL000 {

// The debugger output of the process. Truncates a text after kDebugTextLength characters. Any thread.
class tConsoleTraceDestination : public iTraceDestination {
 public:
  void writeCounted(const char* text, uint64_t length) noexcept override;
  void write(const char* text) noexcept override;
  void unusedThird() noexcept override {}
  char* getConfiguration(char* buffer, int32_t size, uint32_t* needed) const noexcept override;
  [[nodiscard]] bool isAvailable() const noexcept override { return true; }
  void unusedSixth() noexcept override {}
  [[nodiscard]] const char* getName() const noexcept override { return "zosdbg_printf"; }
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
