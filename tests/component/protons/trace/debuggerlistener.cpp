#include "tests/component/protons/trace/debuggerlistener.h"

#ifdef _WIN32
#include <windows.h>

#include <mutex>
#include <utility>
#else
#include "tests/fakewindows/debugger.h"
#endif

namespace nTests {

#ifdef _WIN32
// A text reaches the debugger as an exception, which a handler of the process sees first.
namespace {

std::mutex theMutex;
std::vector<std::string> theTexts;

LONG CALLBACK recordText(EXCEPTION_POINTERS* exception) {
  const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
  if (record.ExceptionCode != static_cast<DWORD>(DBG_PRINTEXCEPTION_C)) {
    return EXCEPTION_CONTINUE_SEARCH;
  }
  const std::lock_guard lock(theMutex);
  // Length with NUL, address.
  theTexts.emplace_back(reinterpret_cast<const char*>(record.ExceptionInformation[1]),
                        static_cast<size_t>(record.ExceptionInformation[0] - 1));
  return EXCEPTION_CONTINUE_EXECUTION;
}

}  // namespace

struct tDebuggerListener::tState {
  void* handler = AddVectoredExceptionHandler(1, recordText);
};

tDebuggerListener::tDebuggerListener() : state_(std::make_unique<tState>()) {
  static_cast<void>(take());
}

tDebuggerListener::~tDebuggerListener() {
  RemoveVectoredExceptionHandler(state_->handler);
}

std::vector<std::string> tDebuggerListener::take() {
  const std::lock_guard lock(theMutex);
  return std::exchange(theTexts, {});
}

#else
// The fake Windows keeps the texts.
struct tDebuggerListener::tState {};

tDebuggerListener::tDebuggerListener() {
  static_cast<void>(nFakeWindows::takeDebuggerOutput());
}

tDebuggerListener::~tDebuggerListener() = default;

std::vector<std::string> tDebuggerListener::take() {
  return nFakeWindows::takeDebuggerOutput();
}

#endif

}  // namespace nTests
