#include <windows.h>

#include <unistd.h>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <mutex>
#include <utility>

#include "tests/fakewindows/debuggeroutput.h"
#include "tests/fakewindows/unusual.h"

namespace nFakeWindows {
namespace {

struct tDebuggerOutput {
  std::mutex mutex;
  std::vector<std::string> texts;
  bool shown = false;
};

constinit std::atomic<bool> debuggerIsPresent = false;

tDebuggerOutput& output() {
  // Never destroyed: a text may be written while the program ends.
  static tDebuggerOutput& theOutput = *new tDebuggerOutput;
  return theOutput;
}

}  // namespace

std::vector<std::string> takeDebuggerOutput() {
  const std::lock_guard lock(output().mutex);
  return std::exchange(output().texts, {});
}

void showDebuggerOutput() {
  const std::lock_guard lock(output().mutex);
  output().shown = true;
}

void attachDebugger() {
  debuggerIsPresent = true;
}

}  // namespace nFakeWindows

using namespace nFakeWindows;

void WINAPI OutputDebugStringA(LPCSTR text) {
  const tInside inside;
  const std::lock_guard lock(output().mutex);
  output().texts.emplace_back(text);
  if (output().shown) {
    std::fputs(text, stderr);
  }
}

BOOL WINAPI IsDebuggerPresent(void) {
  return debuggerIsPresent ? TRUE : FALSE;
}

void WINAPI DebugBreak(void) {
  static_cast<void>(std::raise(SIGTRAP));
}

HANDLE WINAPI GetCurrentProcess(void) {
  return reinterpret_cast<HANDLE>(~uintptr_t{0});
}

// Parent processes see the low eight bits of an exit code only.
BOOL WINAPI TerminateProcess(HANDLE process, UINT exitCode) {
  if (process != GetCurrentProcess()) {
    stop("TerminateProcess", "only the process itself can be ended");
  }
  _exit(static_cast<int>(exitCode & 0xFF));
}
