// A program in which an assertion fails. Its argument names the exception handler that it installs
// to survive a breakpoint: none, vectored, filter or frame.
#include <windows.h>
// Needs windows.h first.
#include <excpt.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "zoapal/protons/trace/assertion.h"

namespace {

// Prints if the process ends by returning from main or by exit.
struct tFarewell {
  ~tFarewell() { std::puts("ended in order"); }
};
const tFarewell farewell;

[[noreturn]] void survive() {
  std::puts("survived");
  std::exit(0);
}

void fail() {
  nQUENRA1400::nZOAPAL000::assertionFailed({"tArray", 64}, "ASSERT(n <= kMaxSize)");
}
// Hides from the compiler that fail() does not return.
void (*volatile failHidden)() = &fail;

bool isBreakpoint(const EXCEPTION_POINTERS& exception) {
  return exception.ExceptionRecord->ExceptionCode == static_cast<DWORD>(EXCEPTION_BREAKPOINT);
}

// Continues the thread at survive().
LONG CALLBACK resumeElsewhere(EXCEPTION_POINTERS* exception) {
  if (!isBreakpoint(*exception)) {
    return EXCEPTION_CONTINUE_SEARCH;
  }
  constexpr DWORD64 kStackAlignment = 16;
  CONTEXT& context = *exception->ContextRecord;
  context.Rip = reinterpret_cast<DWORD64>(&survive);
  // As after a call instruction: aligned, less the return address.
  context.Rsp = (context.Rsp & ~(kStackAlignment - 1)) - sizeof(DWORD64);
  return EXCEPTION_CONTINUE_EXECUTION;
}

}  // namespace

extern "C" LONG selectBreakpoint(EXCEPTION_POINTERS* exception, void*) {
  return isBreakpoint(*exception) ? EXCEPTION_EXECUTE_HANDLER : EXCEPTION_CONTINUE_SEARCH;
}

namespace {

// A function of its own without destructors: it can have one exception handler only.
[[gnu::noinline]] void failInsideFrameHandler() {
  __try1(selectBreakpoint);
  failHidden();
  __except1;
  survive();
}

}  // namespace

int main(int count, char** arguments) {
  const std::string handler = count > 1 ? arguments[1] : "none";
  if (handler == "vectored") {
    AddVectoredExceptionHandler(1, &resumeElsewhere);
  } else if (handler == "filter") {
    SetUnhandledExceptionFilter(&resumeElsewhere);
  } else if (handler == "frame") {
    failInsideFrameHandler();
  }
  fail();
}
