#include "tests/faultsweep/trun.h"

#include <algorithm>

namespace nTests {

using nFakeWindows::tCall;

void PrintTo(const tStep& step, std::ostream* out) {
  *out << step.name << ": " << step.code;
}

size_t tRun::stepOf(tCall call, unsigned nth) const {
  const auto found = std::find_if(
      countsAfter_.begin(), countsAfter_.end(),
      [=](const tCallCounts& counts) { return counts[static_cast<size_t>(call)] >= nth; });
  return static_cast<size_t>(found - countsAfter_.begin());
}

}  // namespace nTests
