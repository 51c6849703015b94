#ifndef TESTS_FAKEWINDOWS_THREADS_H
#define TESTS_FAKEWINDOWS_THREADS_H

#include <windows.h>

namespace nFakeWindows {

// Thrown by the calls that end a thread, and caught where the thread begins.
struct tThreadEnd {
  DWORD exitCode;
};

// References that the library holds to its own module.
[[nodiscard]] int moduleReferences();

}  // namespace nFakeWindows

#endif
