#include "tests/fakewindows/unusual.h"

#include <cstdio>
#include <cstdlib>

namespace nFakeWindows {

thread_local int tInside::depth = 0;
thread_local int tOffTheRecord::depth = 0;

void stop(const char* function, const char* what) {
  std::fprintf(stderr, "the fake Windows: %s: %s\n", function, what);
  std::abort();
}

}  // namespace nFakeWindows
