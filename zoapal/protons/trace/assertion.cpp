#include "zoapal/protons/trace/assertion.h"

#include <windows.h>

#include <cstdio>

#include "zoapal/protons/trace/ttrace.h"

namespace nQUENRA1400::nZOAPAL000 {
// GCOVR_EXCL_START: tests run these functions in processes that they end before the count is stored
namespace {

constexpr size_t kMessageSize = 256;

// A frame of its own: a debugger or a dump of the stopped process shows the message as an argument.
[[noreturn, gnu::noinline]] void stopProcess([[maybe_unused]] const char* message) noexcept {
  // Keeps the text in memory although no code reads it.
  __asm__ volatile("" : : "r"(message) : "memory");
  // A breakpoint is an exception: without a debugger it would reach the client's handlers first, which
  // could resume a library whose state is broken.
  if (IsDebuggerPresent()) {
    DebugBreak();
  }
  for (;;) {
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(STATUS_BREAKPOINT));
  }
}

}  // namespace

void assertionFailed(const nZOAPALS100::tSourceLocation& location,
                     const char* expression) noexcept {
  debugPrintf("[%s|%s|%d] !!ASSERT!!\n", location.component, location.file,
              static_cast<int>(location.line));
  char message[kMessageSize] = {};
  std::snprintf(message, sizeof message, "%s ", expression);
  stopProcess(message);
}
// GCOVR_EXCL_STOP

}  // namespace nQUENRA1400::nZOAPAL000
