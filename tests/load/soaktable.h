#ifndef TESTS_LOAD_SOAKTABLE_H
#define TESTS_LOAD_SOAKTABLE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/load/processsample.h"

namespace nTests {

// A measurement while no thread runs.
struct tSoakRow {
  double seconds;
  uint64_t calls;
  uint64_t failures;
  tProcessSample own;
  tHeapSample heap;
  tHandleCounts handles;
  tProcessSample driver;
};

// The growth of each resource over a run without its warm-up, from the minimum of the first third
// to that of the last. For memory it is twice the smaller growth between adjacent thirds: a leak
// grows steadily, whereas a single step of an allocator is not a leak.
struct tSoakGrowth {
  std::array<int64_t, kHandleKinds.size()> handles;
  int64_t heapBlocks;
  int64_t privateKib;
  int64_t driverHandles;
  int64_t driverPrivateKib;
};

// Fewer rows are not conclusive.
inline constexpr size_t kFewestSoakRows = 8;

[[nodiscard]] tSoakGrowth growthOf(const std::vector<tSoakRow>& rows);
// Describes each growth above its limit; empty if there is none.
[[nodiscard]] std::string growthComplaints(const tSoakGrowth& growth);
// Formats the rows as a table; omits rows if there are many.
[[nodiscard]] std::string soakTable(const std::vector<tSoakRow>& rows);
// "File 5, Key 14".
[[nodiscard]] std::string handleText(const tHandleCounts& handles);

}  // namespace nTests

#endif
