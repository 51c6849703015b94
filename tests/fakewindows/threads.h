#ifndef TESTS_FAKEWINDOWS_THREADS_H
#define TESTS_FAKEWINDOWS_THREADS_H

#include <windows.h>

namespace nFakeWindows {

// Thrown by the calls that end a thread; the entry function of the thread catches it.
struct tThreadEnd {
  DWORD exitCode;
};

// The priority with which later threads start.
void startThreadsWithPriority(int priority);

// References that the library holds to its own module.
[[nodiscard]] int moduleReferences();

}  // namespace nFakeWindows

#endif
