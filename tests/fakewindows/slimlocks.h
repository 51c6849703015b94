#ifndef TESTS_FAKEWINDOWS_SLIMLOCKS_H
#define TESTS_FAKEWINDOWS_SLIMLOCKS_H

namespace nFakeWindows {

// Acquisitions of slim reader/writer locks since the program started.
struct tSlimLockCounts {
  unsigned shared;
  unsigned exclusive;
};

// Any thread.
[[nodiscard]] tSlimLockCounts slimLockCounts();

}  // namespace nFakeWindows

#endif
