#include <process.h>
#include <windows.h>

#include <thread>

#include "tests/fakewindows/objects.h"
#include "tests/fakewindows/unusual.h"

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

}  // namespace

uintptr_t __cdecl _beginthreadex(void* security, unsigned stackSize,
                                 unsigned(__stdcall* start)(void*), void* argument, unsigned flags,
                                 unsigned* id) {
  const tInside inside;
  constexpr auto kCall = tCall::beginThread;
  expectUsual(security == nullptr && stackSize == 0 && flags == 0 && id == nullptr, kCall,
              "only a plain thread can be started");
  // The C runtime sets its own error number; the last error may be missing.
  if (const auto error = faultPlan().enter(kCall)) {
    SetLastError(*error);
    return 0;
  }
  HANDLE handle = nullptr;
  {
    const std::lock_guard lock(objects().mutex);
    handle = objects().add(tThread{false});
  }
  objects().addThread(std::thread([=] {
    start(argument);
    markEnded(handle);
  }));
  return reinterpret_cast<uintptr_t>(handle);
}
