#ifndef TESTS_FAKEWINDOWS_EXCEPTIONS_H
#define TESTS_FAKEWINDOWS_EXCEPTIONS_H

#include <windows.h>

#include <vector>

namespace nFakeWindows {

// A call of RaiseException.
struct tRaisedException {
  DWORD code;
  DWORD flags;
  std::vector<ULONG_PTR> arguments;
};

// Returns and removes the exceptions raised since the last call. Any thread.
[[nodiscard]] std::vector<tRaisedException> takeRaisedExceptions();

}  // namespace nFakeWindows

#endif
