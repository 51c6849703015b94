// On Windows a text reaches the debugger as an exception, which a handler of the process sees first.
#include <windows.h>

#include <mutex>
#include <utility>

#include "tests/component/protons/trace/debuggerlistener.h"

namespace nTests {
namespace {

std::mutex theMutex;
std::vector<std::string> theTexts;

LONG CALLBACK hear(EXCEPTION_POINTERS* exception) {
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
  void* handler = AddVectoredExceptionHandler(1, hear);
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

}  // namespace nTests
