// Random bytes. The generator of UUIDs calls BCrypt on Windows and getrandom natively; the linker redirects
// the latter to this file, so that native tests can make the generator fail.
#include <sys/random.h>
#include <windows.h>

#include <cerrno>

#include "tests/fakewindows/unusual.h"

using namespace nFakeWindows;

extern "C" {
ssize_t __real_getrandom(void* bytes, size_t count, unsigned flags);
ssize_t __wrap_getrandom(void* bytes, size_t count, unsigned flags);
}

ssize_t __wrap_getrandom(void* bytes, size_t count, unsigned flags) {
  const tInside inside;
  if (const auto error = faultPlan().enter(tCall::getRandom)) {
    const bool isMemory = *error == ERROR_NOT_ENOUGH_MEMORY || *error == ERROR_NO_SYSTEM_RESOURCES;
    errno = isMemory ? ENOMEM : EIO;
    return -1;
  }
  return __real_getrandom(bytes, count, flags);
}
