#ifndef ZOAPAL_PROTONS_TRACE_DEBUGPRINTF_H
#define ZOAPAL_PROTONS_TRACE_DEBUGPRINTF_H

#include <cstddef>
#include <cstdio>

// With which rules the compiler checks the arguments: on Windows the C runtime has formats of its
// own, which the C++ library replaces by the standard ones.
#ifdef __MINGW_PRINTF_FORMAT
#define ZOAPAL_PRINTF_FORMAT __MINGW_PRINTF_FORMAT
#else
#define ZOAPAL_PRINTF_FORMAT printf
#endif

namespace nQUENRA1400::nZOAPAL000 {

// A text for the debugger output is cut after so many characters.
inline constexpr size_t kDebugTextLength = 511;

// Writes one text to the debugger output of the process, formatted as by printf and without a line
// end of its own. Any thread. Never fails; allocates nothing.
[[gnu::format(ZOAPAL_PRINTF_FORMAT, 1, 2)]] void debugPrintf(const char* format, ...) noexcept;

}  // namespace nQUENRA1400::nZOAPAL000

#endif
