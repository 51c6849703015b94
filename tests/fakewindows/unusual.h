#ifndef TESTS_FAKEWINDOWS_UNUSUAL_H
#define TESTS_FAKEWINDOWS_UNUSUAL_H

#include "tests/fakewindows/faultplan.h"

namespace nFakeWindows {

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
