#include "zoapal/protons/trace/assertion.h"

#include <windows.h>

#include <cstdio>
#include <cstdlib>

#include "zoapal/protons/trace/debugprintf.h"

namespace nQUENRA1400::nZOAPAL000 {
namespace {

constexpr size_t kMessageSize = 256;

// A frame of its own, so that whoever looks at the stopped process finds the message as an argument.
[[noreturn, gnu::noinline]] void stopProcess([[maybe_unused]] const char* message) noexcept {
  // Keeps the text behind the pointer although nothing reads it here.
  __asm__ volatile("" : : "r"(message) : "memory");
  DebugBreak();
  TerminateProcess(GetCurrentProcess(), static_cast<UINT>(STATUS_BREAKPOINT));
  std::abort();
}

}  // namespace

void assertionFailed(const char* component, const char* file, uint32_t line,
                     const char* expression) noexcept {
  debugPrintf("[%s|%s|%d] !!ASSERT!!\n", component, file, static_cast<int>(line));
  char message[kMessageSize] = {};
  std::snprintf(message, sizeof message, "%s ", expression);
  stopProcess(message);
}

}  // namespace nQUENRA1400::nZOAPAL000
