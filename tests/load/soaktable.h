#ifndef TESTS_LOAD_SOAKTABLE_H
#define TESTS_LOAD_SOAKTABLE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/load/processsample.h"

namespace nTests {

// What was measured at one quiet moment.
struct tSoakRow {
  double seconds;
  uint64_t calls;
  uint64_t failures;
  tProcessSample own;
  tHeapSample heap;
  tHandleCounts handles;
  tProcessSample driver;
};

// How much more there is at the end of a run than at its beginning, warm-up left out, where the lowest
// of each third counts. Memory that a leak takes grows from the first third to the second as from there
// to the last, and what counts is twice the lesser of the two: an allocator's one step up is no leak.
struct tSoakGrowth {
  std::array<int64_t, kHandleKinds.size()> handles;
  int64_t heapBlocks;
  int64_t privateKib;
  int64_t driverHandles;
  int64_t driverPrivateKib;
};

// Fewer quiet moments tell nothing.
inline constexpr size_t kFewestSoakRows = 8;

[[nodiscard]] tSoakGrowth growthOf(const std::vector<tSoakRow>& rows);
// What grew that should not, empty when nothing did.
[[nodiscard]] std::string growthComplaints(const tSoakGrowth& growth);
// As a table, thinned out where there are many rows.
[[nodiscard]] std::string soakTable(const std::vector<tSoakRow>& rows);
// "File 5, Key 14".
[[nodiscard]] std::string handleText(const tHandleCounts& handles);

}  // namespace nTests

#endif
