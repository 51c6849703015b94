#include "zoapal/protons/trace/debugprintf.h"

#include <windows.h>

#include <cstdarg>

namespace nQUENRA1400::nZOAPAL000 {

// The compiler checks arguments against a format; it cannot check a parameter pack.
// NOLINTNEXTLINE(cert-dcl50-cpp)
void debugPrintf(const char* format, ...) noexcept {
  char text[kDebugTextLength + 1] = {};
  va_list arguments;
  va_start(arguments, format);
  // Some C runtimes leave a truncated text unterminated. The checker sees va_start only in some orders
  // of its input files.
  // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  text[kDebugTextLength] = '\0';
  OutputDebugStringA(text);
}

}  // namespace nQUENRA1400::nZOAPAL000
