#include <windows.h>

#include "tests/fakewindows/objects.h"
#include "tests/fakewindows/unusual.h"

using namespace nFakeWindows;

HANDLE WINAPI CreateEventA(SECURITY_ATTRIBUTES* security, BOOL manualReset, BOOL initiallySignalled,
                           LPCSTR name) {
  const tInside inside;
  constexpr auto kCall = tCall::createEvent;
  expectUsual(security == nullptr && name == nullptr, kCall, "only a plain event can be made");
  const std::string reset = manualReset != FALSE ? "manual-reset" : "auto-reset";
  const std::string state = initiallySignalled != FALSE ? "signalled" : "not signalled";
  if (const auto error = faultPlan().enter(kCall, reset + ", " + state)) {
    SetLastError(*error);
    return nullptr;
  }
  const std::lock_guard lock(objects().mutex);
  return objects().add(tEvent{manualReset != FALSE, initiallySignalled != FALSE});
}
