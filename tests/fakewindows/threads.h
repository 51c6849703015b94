// Threads and their synchronization.
#ifndef TESTS_FAKEWINDOWS_THREADS_H
#define TESTS_FAKEWINDOWS_THREADS_H

#include <cstdint>

namespace nFakeWindows {

// Thrown by the calls that end a thread; the entry function of the thread catches it.
struct tThreadEnd {
  uint32_t exitCode;
};

// The priority with which later threads start.
void startThreadsWithPriority(int priority);

// References that the library holds to its own module.
[[nodiscard]] int moduleReferences();

// The number of critical sections that exist.
[[nodiscard]] int criticalSections();

// Entries into critical sections since the program started. Any thread.
[[nodiscard]] unsigned enteredCriticalSections();

// Acquisitions of slim reader/writer locks since the program started.
struct tSlimLockCounts {
  unsigned shared;
  unsigned exclusive;
};

// Any thread.
[[nodiscard]] tSlimLockCounts slimLockCounts();

}  // namespace nFakeWindows

#endif
