#ifndef TESTS_FAKEWINDOWS_DEBUGGER_H
#define TESTS_FAKEWINDOWS_DEBUGGER_H

#include <cstdint>
#include <string>
#include <vector>

namespace nFakeWindows {

// The exit code that a parent process on this system receives after an assertion failed: the low
// byte of STATUS_BREAKPOINT.
inline constexpr int kAssertionExitCode = 3;

// Returns and removes the texts written to the debugger output since the last call. Any thread.
[[nodiscard]] std::vector<std::string> takeDebuggerOutput();

// Also copies later texts to the error stream, for a process that is about to end.
void showDebuggerOutput();

// Makes IsDebuggerPresent report a debugger for the rest of the process.
void attachDebugger();

// A call of RaiseException.
struct tRaisedException {
  uint32_t code;
  uint32_t flags;
  std::vector<uintptr_t> arguments;
};

// Returns and removes the exceptions raised since the last call. Any thread.
[[nodiscard]] std::vector<tRaisedException> takeRaisedExceptions();

}  // namespace nFakeWindows

#endif
