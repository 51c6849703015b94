#include <windows.h>

#include <chrono>
#include <span>
#include <thread>

#include "tests/fakewindows/objects.h"
#include "tests/fakewindows/unusual.h"

using namespace nFakeWindows;

namespace {

// Blocks until an object is signalled and returns its index.
size_t waitForAny(tCall call, std::span<const HANDLE> handles) {
  std::unique_lock lock(objects().mutex);
  for (;;) {
    for (size_t i = 0; i < handles.size(); ++i) {
      const std::optional<bool> signalled = objects().isSignalled(handles[i]);
      expectUsual(signalled.has_value(), call, "neither an event nor a thread, or closed already");
      if (*signalled) {
        tEvent* const event = objects().find<tEvent>(handles[i]);
        if (event != nullptr && !event->manualReset) {
          event->signalled = false;
        }
        return i;
      }
    }
    objects().changed.wait(lock);
  }
}

// The run time of a program in milliseconds; none for other handles.
std::optional<DWORD> runTimeOf(HANDLE handle) {
  const std::lock_guard lock(objects().mutex);
  const tProcess* const process = objects().find<tProcess>(handle);
  return process == nullptr ? std::nullopt : std::optional(process->milliseconds);
}

}  // namespace

DWORD WINAPI WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
  const tInside inside;
  constexpr auto kCall = tCall::waitForSingleObject;
  if (const auto error = faultPlan().enter(kCall, std::to_string(milliseconds))) {
    SetLastError(*error);
    return WAIT_FAILED;
  }
  if (const auto runs = runTimeOf(handle)) {
    // The run time of a program is not waited for.
    return *runs <= milliseconds ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
  }
  expectUsual(milliseconds == INFINITE, kCall, "only a program is waited for with a limit");
  return static_cast<DWORD>(WAIT_OBJECT_0 + waitForAny(kCall, {&handle, 1}));
}

DWORD WINAPI WaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL all,
                                    DWORD milliseconds) {
  const tInside inside;
  constexpr auto kCall = tCall::waitForMultipleObjects;
  expectUsual(!all && milliseconds == INFINITE, kCall,
              "only waiting for any without limit is supported");
  if (const auto error = faultPlan().enter(kCall)) {
    SetLastError(*error);
    return WAIT_FAILED;
  }
  return static_cast<DWORD>(WAIT_OBJECT_0 + waitForAny(kCall, {handles, count}));
}

ULONGLONG WINAPI GetTickCount64(void) {
  const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<ULONGLONG>(
      std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart).count());
}

void WINAPI Sleep(DWORD milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}
