#include "tests/fakewindows/threads.h"

#include <windows.h>
// Require windows.h.
#include <process.h>

#include <atomic>
#include <string>
#include <thread>

#include "tests/fakewindows/faultplan.h"
#include "tests/fakewindows/objects.h"

namespace nFakeWindows {
namespace {

int initialThreadPriority = THREAD_PRIORITY_NORMAL;
DWORD nextThreadId = 100;
thread_local DWORD currentThreadId = 1;
thread_local DWORD lastError = 0;

// References to the module of the library, which is the program itself.
std::atomic<int> references = 0;

}  // namespace

void startThreadsWithPriority(int priority) {
  const std::lock_guard lock(objects().mutex);
  initialThreadPriority = priority;
}

int moduleReferences() {
  return references;
}

}  // namespace nFakeWindows

using namespace nFakeWindows;

namespace {

void markEnded(HANDLE handle) {
  const std::lock_guard lock(objects().mutex);
  // The handle may have been closed while the thread ran.
  if (tThread* const thread = objects().find<tThread>(handle)) {
    thread->ended = true;
    objects().changed.notify_all();
  }
}

using tMain = unsigned(__stdcall*)(void*);

// A separate function: the caller of a Windows function expects RSI and RDI preserved, but an
// exception does not restore them. This function uses no variable after the handler.
[[gnu::noinline]] void runToItsEnd(tMain start, void* argument) {
  try {
    start(argument);
  } catch (const tThreadEnd&) {  // NOLINT(bugprone-empty-catch): the thread requested its end
  }
}

}  // namespace

uintptr_t __cdecl _beginthreadex(void* security, unsigned stackSize,
                                 unsigned(__stdcall* start)(void*), void* argument, unsigned flags,
                                 unsigned* id) {
  const tInside inside;
  constexpr auto kCall = tCall::beginThread;
  expectSupported(security == nullptr && stackSize == 0 && flags == 0, kCall,
                  "only a plain thread can be started");
  // The C runtime sets errno; the last error may not be set.
  if (const auto error = faultPlan().enter(kCall)) {
    SetLastError(*error);
    return 0;
  }
  HANDLE handle = nullptr;
  DWORD newId = 0;
  {
    const std::lock_guard lock(objects().mutex);
    const DWORD threadId = nextThreadId++;
    handle = objects().add(tThread{threadId, false, initialThreadPriority});
    if (id != nullptr) {
      *id = threadId;
    }
    newId = threadId;
  }
  objects().startThread("library", [=] {
    currentThreadId = newId;
    runToItsEnd(start, argument);
    scheduler().point("EndThread", {"thread", newId});
    markEnded(handle);
  });
  scheduler().point(nameOf(kCall), {"thread", newId});
  return reinterpret_cast<uintptr_t>(handle);
}

DWORD WINAPI GetCurrentThreadId(void) {
  return currentThreadId;
}

int WINAPI GetThreadPriority(HANDLE handle) {
  const tInside inside;
  constexpr auto kCall = tCall::getThreadPriority;
  if (const auto error = faultPlan().enter(kCall)) {
    SetLastError(*error);
    return THREAD_PRIORITY_ERROR_RETURN;
  }
  const std::lock_guard lock(objects().mutex);
  const tThread* const thread = objects().find<tThread>(handle);
  expectSupported(thread != nullptr, kCall, "not a thread, or one that was closed");
  return thread->priority;
}

BOOL WINAPI SetThreadPriority(HANDLE handle, int priority) {
  const tInside inside;
  constexpr auto kCall = tCall::setThreadPriority;
  if (const auto error = faultPlan().enter(kCall, std::to_string(priority))) {
    SetLastError(*error);
    return FALSE;
  }
  const std::lock_guard lock(objects().mutex);
  tThread* const thread = objects().find<tThread>(handle);
  expectSupported(thread != nullptr, kCall, "not a thread, or one that was closed");
  thread->priority = priority;
  return TRUE;
}

extern "C" IMAGE_DOS_HEADER __ImageBase;  // NOLINT(bugprone-reserved-identifier)
IMAGE_DOS_HEADER __ImageBase{};           // NOLINT(bugprone-reserved-identifier)

BOOL WINAPI GetModuleHandleExA(DWORD flags, LPCSTR address, HMODULE* module) {
  const tInside inside;
  constexpr auto kCall = tCall::getModuleHandleEx;
  expectSupported(flags == GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS &&
                      address == reinterpret_cast<LPCSTR>(&__ImageBase),
                  kCall, "the library takes references to its own module only");
  if (const auto error = faultPlan().enter(kCall)) {
    *module = nullptr;
    SetLastError(*error);
    return FALSE;
  }
  ++references;
  *module = reinterpret_cast<HMODULE>(&__ImageBase);
  return TRUE;
}

BOOL WINAPI FreeLibrary(HMODULE module) {
  if (module != reinterpret_cast<HMODULE>(&__ImageBase) || --references < 0) {
    stop("FreeLibrary", "not a module, or one without a reference");
  }
  return TRUE;
}

VOID WINAPI FreeLibraryAndExitThread(HMODULE module, DWORD exitCode) {
  FreeLibrary(module);
  throw tThreadEnd{exitCode};
}

DWORD WINAPI GetLastError(void) {
  return lastError;
}

void WINAPI SetLastError(DWORD error) {
  lastError = error;
}
