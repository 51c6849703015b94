#include <windows.h>

#include <chrono>
#include <thread>

#include "tests/fakewindows/objects.h"
#include "tests/fakewindows/unusual.h"

using namespace nFakeWindows;

HANDLE WINAPI CreateEventA(SECURITY_ATTRIBUTES* security, BOOL manualReset, BOOL initiallySignalled,
                           LPCSTR name) {
  const tInside inside;
  constexpr auto kCall = tCall::createEvent;
  expectUsual(security == nullptr && name == nullptr, kCall, "only a plain event can be made");
  if (const auto error = faultPlan().enter(kCall)) {
    SetLastError(*error);
    return nullptr;
  }
  const std::lock_guard lock(objects().mutex);
  return objects().add(tEvent{manualReset != FALSE, initiallySignalled != FALSE});
}

DWORD WINAPI WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
  const tInside inside;
  constexpr auto kCall = tCall::waitForSingleObject;
  if (const auto error = faultPlan().enter(kCall, std::to_string(milliseconds))) {
    SetLastError(*error);
    return WAIT_FAILED;
  }
  std::unique_lock lock(objects().mutex);
  if (const tProcess* const process = objects().find<tProcess>(handle)) {
    // Time passes at once for a program.
    return process->milliseconds <= milliseconds ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
  }
  expectUsual(milliseconds == INFINITE, kCall, "an event is waited for without limit");
  for (;;) {
    tEvent* const event = objects().find<tEvent>(handle);
    expectUsual(event != nullptr, kCall, "not an event, or one that was closed");
    if (event->signalled) {
      event->signalled = event->manualReset;
      return WAIT_OBJECT_0;
    }
    objects().changed.wait(lock);
  }
}

void WINAPI Sleep(DWORD milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}
