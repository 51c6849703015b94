#include "tests/fakewindows/debugger.h"

#include <windows.h>

#include <unistd.h>
#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <mutex>
#include <utility>
#include <vector>

#include "tests/fakewindows/faultplan.h"

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

// Guards both lists below.
std::mutex exceptionsMutex;
std::vector<PVECTORED_EXCEPTION_HANDLER>& handlers() {
  static auto& theHandlers = *new std::vector<PVECTORED_EXCEPTION_HANDLER>;
  return theHandlers;
}
std::vector<tRaisedException>& raised() {
  static auto& theExceptions = *new std::vector<tRaisedException>;
  return theExceptions;
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

std::vector<tRaisedException> takeRaisedExceptions() {
  const std::lock_guard lock(exceptionsMutex);
  return std::exchange(raised(), {});
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

PVOID WINAPI AddVectoredExceptionHandler(ULONG, PVECTORED_EXCEPTION_HANDLER handler) {
  const tInside inside;
  if (const auto error = faultPlan().enter(tCall::addVectoredExceptionHandler)) {
    SetLastError(*error);
    return nullptr;
  }
  const std::lock_guard lock(exceptionsMutex);
  handlers().push_back(handler);
  return reinterpret_cast<PVOID>(handler);
}

ULONG WINAPI RemoveVectoredExceptionHandler(PVOID handle) {
  const tInside inside;
  const std::lock_guard lock(exceptionsMutex);
  const auto found = std::find(handlers().begin(), handlers().end(),
                               reinterpret_cast<PVECTORED_EXCEPTION_HANDLER>(handle));
  if (found == handlers().end()) {
    stop("RemoveVectoredExceptionHandler", "there is no such handler");
  }
  handlers().erase(found);
  return 1;
}

// Without a debugger, an exception that no handler accepts stops the program.
void WINAPI RaiseException(DWORD code, DWORD flags, DWORD count, const ULONG_PTR* arguments) {
  const tInside inside;
  EXCEPTION_RECORD record{};
  record.ExceptionCode = code;
  record.ExceptionFlags = flags;
  record.NumberParameters = count;
  std::copy_n(arguments, count, record.ExceptionInformation);
  EXCEPTION_POINTERS pointers{&record, nullptr};
  const std::lock_guard lock(exceptionsMutex);
  raised().push_back({code, flags, {arguments, arguments + count}});
  const bool isAccepted =
      std::any_of(handlers().begin(), handlers().end(), [&](PVECTORED_EXCEPTION_HANDLER handler) {
        return handler(&pointers) == EXCEPTION_CONTINUE_EXECUTION;
      });
  if (!isAccepted) {
    stop("RaiseException", "no handler accepts the exception");
  }
}
