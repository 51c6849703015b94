#include <windows.h>

#include <atomic>
#include <mutex>

#include "tests/fakewindows/faultplan.h"
#include "tests/fakewindows/objects.h"
#include "tests/fakewindows/unusual.h"

namespace nFakeWindows {
namespace {

constinit std::atomic<int> alive = 0;

// The lock that implements a section. A member of the section that is otherwise unused stores it.
std::recursive_mutex* mutexOf(CRITICAL_SECTION* section, const char* function) {
  if (section->LockSemaphore == nullptr) {
    stop(function, "the critical section is not initialised");
  }
  return static_cast<std::recursive_mutex*>(section->LockSemaphore);
}

}  // namespace

int criticalSections() {
  return alive;
}

}  // namespace nFakeWindows

using namespace nFakeWindows;

BOOL WINAPI InitializeCriticalSectionEx(CRITICAL_SECTION* section, DWORD, DWORD flags) {
  const tInside inside;
  expectUsual(flags == 0, tCall::initializeCriticalSectionEx, "flags are not supported");
  if (const auto error = faultPlan().enter(tCall::initializeCriticalSectionEx)) {
    SetLastError(*error);
    return FALSE;
  }
  *section = {};
  section->LockSemaphore = new std::recursive_mutex;
  ++alive;
  return TRUE;
}

void WINAPI EnterCriticalSection(CRITICAL_SECTION* section) {
  mutexOf(section, "EnterCriticalSection")->lock();
}

void WINAPI LeaveCriticalSection(CRITICAL_SECTION* section) {
  mutexOf(section, "LeaveCriticalSection")->unlock();
}

void WINAPI DeleteCriticalSection(CRITICAL_SECTION* section) {
  const tInside inside;
  delete mutexOf(section, "DeleteCriticalSection");
  section->LockSemaphore = nullptr;
  --alive;
}
