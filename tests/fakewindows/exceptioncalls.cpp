#include <windows.h>

#include <algorithm>
#include <mutex>
#include <vector>

#include "tests/fakewindows/unusual.h"

using namespace nFakeWindows;

namespace {

std::mutex handlersMutex;
std::vector<PVECTORED_EXCEPTION_HANDLER>& handlers() {
  static auto& theHandlers = *new std::vector<PVECTORED_EXCEPTION_HANDLER>;
  return theHandlers;
}

}  // namespace

PVOID WINAPI AddVectoredExceptionHandler(ULONG, PVECTORED_EXCEPTION_HANDLER handler) {
  const tInside inside;
  if (const auto error = faultPlan().enter(tCall::addVectoredExceptionHandler)) {
    SetLastError(*error);
    return nullptr;
  }
  const std::lock_guard lock(handlersMutex);
  handlers().push_back(handler);
  return reinterpret_cast<PVOID>(handler);
}

ULONG WINAPI RemoveVectoredExceptionHandler(PVOID handle) {
  const tInside inside;
  const std::lock_guard lock(handlersMutex);
  const auto found = std::find(handlers().begin(), handlers().end(),
                               reinterpret_cast<PVECTORED_EXCEPTION_HANDLER>(handle));
  if (found == handlers().end()) {
    stop("RemoveVectoredExceptionHandler", "there is no such handler");
  }
  handlers().erase(found);
  return 1;
}

// Nobody debugs the program, so that an exception which no handler takes ends it.
void WINAPI RaiseException(DWORD code, DWORD flags, DWORD count, const ULONG_PTR* arguments) {
  const tInside inside;
  EXCEPTION_RECORD record{};
  record.ExceptionCode = code;
  record.ExceptionFlags = flags;
  record.NumberParameters = count;
  std::copy_n(arguments, count, record.ExceptionInformation);
  EXCEPTION_POINTERS pointers{&record, nullptr};
  const std::lock_guard lock(handlersMutex);
  const bool isTaken =
      std::any_of(handlers().begin(), handlers().end(), [&](PVECTORED_EXCEPTION_HANDLER handler) {
        return handler(&pointers) == EXCEPTION_CONTINUE_EXECUTION;
      });
  if (!isTaken) {
    stop("RaiseException", "nobody takes the exception");
  }
}
