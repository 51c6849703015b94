#ifndef ZOAPAL_PROTONS_TRACE_ASSERTION_H
#define ZOAPAL_PROTONS_TRACE_ASSERTION_H

#include <cstdint>

namespace nQUENRA1400::nZOAPAL000 {

// The library has broken a promise to itself: going on would read or write where nothing is.
//
// Writes "[component|file|line] !!ASSERT!!\n" to the debugger output and ends the process at once, as
// a breakpoint that a debugger catches. Nothing is unwound and no destructor runs. When a debugger
// lets the process go on behind the breakpoint, it ends all the same, with STATUS_BREAKPOINT.
[[noreturn]] void assertionFailed(const char* component, const char* file, uint32_t line,
                                  const char* expression) noexcept;

}  // namespace nQUENRA1400::nZOAPAL000

#endif
