#ifndef TESTS_FAKEWINDOWS_UNUSUAL_H
#define TESTS_FAKEWINDOWS_UNUSUAL_H

#include "tests/fakewindows/faultplan.h"

namespace nFakeWindows {

// Marks that a thread is inside the fake Windows, whose own allocations nobody wants to fail.
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

// While it lives, what its thread calls is a matter of the test alone: it is neither counted nor made
// to fail, and neither are its allocations.
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

// Ends the program, naming the function: it was called in a way that the library has no reason for.
[[noreturn]] void stop(const char* function, const char* what);

// Stops unless the call is made in a way that the fake knows.
inline void expectUsual(bool usual, tCall call, const char* what) {
  if (!usual) {
    stop(nameOf(call), what);
  }
}

}  // namespace nFakeWindows

#endif
