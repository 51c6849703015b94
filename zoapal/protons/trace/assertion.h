#ifndef ZOAPAL_PROTONS_TRACE_ASSERTION_H
#define ZOAPAL_PROTONS_TRACE_ASSERTION_H

#include "zoapal/protons/status/tstatus.h"

namespace nQUENRA1400::nZOAPAL000 {

// Stops the process because an invariant of the library is broken: continuing would read or write
// outside its memory.
//
// Writes "[component|file|line] !!ASSERT!!\n" to the debugger output and terminates the process with
// exit code STATUS_BREAKPOINT. No exception handler of the client can prevent that, and no destructor
// runs. Under a debugger it stops at a breakpoint first; a debugger that passes the breakpoint on to
// the program exposes it to the program's handlers.
[[noreturn]] void assertionFailed(const nZOAPALS100::tSourceLocation& location,
                                  const char* expression) noexcept;

}  // namespace nQUENRA1400::nZOAPAL000

#endif
