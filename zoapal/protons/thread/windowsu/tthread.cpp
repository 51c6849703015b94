#include "zoapal/protons/thread/windowsu/tthread.h"

#include <process.h>

#include <cstring>
#include <iterator>

// The linker puts this symbol at the start of the image, whose address is the module's handle.
extern "C" IMAGE_DOS_HEADER __ImageBase;  // NOLINT(bugprone-reserved-identifier)

namespace nQUENRA1400::nZOAPAL000 {
namespace {

HMODULE ownModule() noexcept {
  return reinterpret_cast<HMODULE>(&__ImageBase);
}

using nZOAPALS100::tSourceLocation;
using nZOAPALS100::tStatus;

constexpr tSourceLocation kStart{"thread", 471};
constexpr tSourceLocation kNotStarted{"thread", 859};
constexpr tSourceLocation kSetPriority{"thread", 866};
constexpr tSourceLocation kWaitForOne{"wait", 22};
constexpr tSourceLocation kWaitForEither{"wait", 31};

constexpr DWORD kNamingException = 0x406D1388;
constexpr char kName[] = "quenra";

// The record that debuggers know.
struct tThreadName {
  ULONG_PTR type;
  const char* name;
  DWORD threadId;
  DWORD flags;
};
constexpr ULONG_PTR kType = 0x1000;
constexpr DWORD kWords = sizeof(tThreadName) / sizeof(ULONG_PTR);

// Without a debugger the exception has no handler, and would end the process. Exceptions of this kind
// that other code raises have another name, at another address at least, and are not handled here.
LONG CALLBACK continueAfterOurs(EXCEPTION_POINTERS* exception) noexcept {
  const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
  const bool isOurs = record.ExceptionCode == kNamingException &&
                      record.NumberParameters == kWords &&
                      record.ExceptionInformation[1] == reinterpret_cast<ULONG_PTR>(&kName);
  return isOurs ? EXCEPTION_CONTINUE_EXECUTION : EXCEPTION_CONTINUE_SEARCH;
}

}  // namespace

void releaseModuleAndEndThread() {
  FreeLibraryAndExitThread(ownModule(), 0);
}

tUniqueThread startThreadInModule(tThreadMain main, void* argument, DWORD& id) noexcept {
  id = 0;
  HMODULE reference = nullptr;
  if (!GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                          reinterpret_cast<LPCSTR>(ownModule()), &reference)) {
    return {};
  }
  unsigned newId = 0;
  // 0 on failure, and the last error may be missing then.
  const uintptr_t thread = _beginthreadex(nullptr, 0, main, argument, 0, &newId);
  if (thread == 0) {
    const DWORD error = GetLastError();
    FreeLibrary(reference);
    SetLastError(error);
    return {};
  }
  id = newId;
  return tUniqueThread(reinterpret_cast<HANDLE>(thread));
}

void tThread::checkStarted(tStatus& status) const noexcept {
  if (!isStarted()) {
    mergeStatus(status, nZOAPALS100::kInternalError, kStart);
  }
}

void tThread::setPriority(int priority, tStatus& status) noexcept {
  if (status.isError()) {
    return;
  }
  if (!isStarted()) {
    mergeStatus(status, nZOAPALS100::kNotReady, kNotStarted);
  } else if (GetThreadPriority(handle_.get()) != priority &&
             !SetThreadPriority(handle_.get(), priority)) {
    mergeStatus(status, nZOAPALS100::kInternalError, kSetPriority);
  }
}

void tThread::join() noexcept {
  if (isStarted() && !isCurrent()) {
    waitFor(handle_.get());
  }
  handle_.reset();
  id_ = 0;
}

void nameThreadForDebuggers(DWORD threadId) noexcept {
  void* const handler = AddVectoredExceptionHandler(1, continueAfterOurs);
  if (handler == nullptr) {
    return;
  }
  const tThreadName record{kType, kName, threadId, 0};
  ULONG_PTR words[kWords];
  std::memcpy(words, &record, sizeof words);
  RaiseException(kNamingException, 0, kWords, words);
  RemoveVectoredExceptionHandler(handler);
}

void waitFor(HANDLE object) noexcept {
  repeatUntilDone(kWaitForOne, "ASSERT(WaitForSingleObject)", [object]() noexcept {
    return WaitForSingleObject(object, INFINITE) != WAIT_FAILED;
  });
}

void waitForEither(HANDLE first, HANDLE second) noexcept {
  repeatUntilDone(kWaitForEither, "ASSERT(WaitForMultipleObjects)", [=]() noexcept {
    const HANDLE objects[] = {first, second};
    return WaitForMultipleObjects(std::size(objects), objects, FALSE, INFINITE) != WAIT_FAILED;
  });
}

}  // namespace nQUENRA1400::nZOAPAL000
