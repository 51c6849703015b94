#ifndef ZOAPAL_PROTONS_TRACE_DEBUGPRINTF_H
#define ZOAPAL_PROTONS_TRACE_DEBUGPRINTF_H

#include <cstddef>
#include <cstdio>

// The rules by which the compiler checks the arguments. On Windows the C runtime has its own formats,
// which the C++ library replaces by the standard ones.
#ifdef __MINGW_PRINTF_FORMAT
#define ZOAPAL_PRINTF_FORMAT __MINGW_PRINTF_FORMAT
#else
#define ZOAPAL_PRINTF_FORMAT printf
#endif

namespace nQUENRA1400::nZOAPAL000 {

// Longer texts for the debugger output are truncated to this length.
inline constexpr size_t kDebugTextLength = 511;

// Writes one text to the debugger output of the process, formatted as by printf. Adds no line end.
// Never fails and allocates nothing. Any thread.
[[gnu::format(ZOAPAL_PRINTF_FORMAT, 1, 2)]] void debugPrintf(const char* format, ...) noexcept;

}  // namespace nQUENRA1400::nZOAPAL000

#endif
