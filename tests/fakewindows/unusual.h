#ifndef TESTS_FAKEWINDOWS_UNUSUAL_H
#define TESTS_FAKEWINDOWS_UNUSUAL_H

#include "tests/fakewindows/faultplan.h"

namespace nFakeWindows {

// Marks a thread as executing the fake Windows, whose own allocations must not fail.
class tInside {
 public:
  tInside() noexcept { ++depth; }
  tInside(const tInside&) = delete;
  tInside& operator=(const tInside&) = delete;
  ~tInside() { --depth; }

  [[nodiscard]] static bool isSo() noexcept { return depth != 0; }

 private:
  static thread_local int depth;
};

// During its lifetime, calls and allocations of its thread belong to the test: they are not counted
// and do not fail.
class tOffTheRecord {
 public:
  tOffTheRecord() noexcept { ++depth; }
  tOffTheRecord(const tOffTheRecord&) = delete;
  tOffTheRecord& operator=(const tOffTheRecord&) = delete;
  ~tOffTheRecord() { --depth; }

  [[nodiscard]] static bool isSo() noexcept { return depth != 0; }

 private:
  static thread_local int depth;
  const tInside inside_;
};

// Ends the program with the name of the function, which was called as the library should never do.
[[noreturn]] void stop(const char* function, const char* what);

// Ends the program unless the fake supports the arguments of the call.
inline void expectUsual(bool usual, tCall call, const char* what) {
  if (!usual) {
    stop(nameOf(call), what);
  }
}

}  // namespace nFakeWindows

#endif
