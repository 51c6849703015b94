#include "zoapal/protons/trace/debugprintf.h"

#include <windows.h>

#include <cstdarg>

namespace nQUENRA1400::nZOAPAL000 {

// A format whose arguments the compiler checks says more than a pack of parameters would.
// NOLINTNEXTLINE(cert-dcl50-cpp)
void debugPrintf(const char* format, ...) noexcept {
  char text[kDebugTextLength + 1] = {};
  va_list arguments;
  va_start(arguments, format);
  // Some C runtimes leave a text that is cut without its end. The checker sees va_start or not,
  // depending on which files it was given before.
  // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  text[kDebugTextLength] = '\0';
  OutputDebugStringA(text);
}

}  // namespace nQUENRA1400::nZOAPAL000
