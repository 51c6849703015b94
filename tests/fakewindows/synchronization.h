#ifndef TESTS_FAKEWINDOWS_SYNCHRONIZATION_H
#define TESTS_FAKEWINDOWS_SYNCHRONIZATION_H

namespace nFakeWindows {

// The number of critical sections that exist.
[[nodiscard]] int criticalSections();

// Acquisitions of slim reader/writer locks since the program started.
struct tSlimLockCounts {
  unsigned shared;
  unsigned exclusive;
};

// Any thread.
[[nodiscard]] tSlimLockCounts slimLockCounts();

}  // namespace nFakeWindows

#endif
