// Measurements of a soak, and the growth that they show.
#ifndef TESTS_LOAD_SOAKTABLE_H
#define TESTS_LOAD_SOAKTABLE_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace nTests {

// System resources used by one or several processes.
struct tProcessSample {
  uint32_t handles;
  uint64_t privateKib;
};

// The allocated memory in the heaps of a process.
struct tHeapSample {
  uint64_t blocks;
  uint64_t bytes;
};

// The number of handles by kind of object, in the order of kHandleKinds. Arrays, because a
// measurement of the heap must not allocate.
inline constexpr std::array<std::string_view, 12> kHandleKinds{
    "Directory", "Event",   "File",      "IoCompletion", "Key",   "Mutant",
    "Process",   "Section", "Semaphore", "Thread",       "Token", "another kind"};
using tHandleCounts = std::array<uint32_t, kHandleKinds.size()>;
// The last index for unknown names.
[[nodiscard]] constexpr size_t indexOfHandleKind(std::string_view name) noexcept {
  const auto* const known = std::find(kHandleKinds.begin(), kHandleKinds.end() - 1, name);
  return static_cast<size_t>(known - kHandleKinds.begin());
}

[[nodiscard]] tProcessSample sampleThisProcess();
// The heaps of this process. No other thread may run.
[[nodiscard]] tHeapSample sampleHeaps();
[[nodiscard]] tHandleCounts countHandles();
// The processes in which Wine runs drivers.
[[nodiscard]] tProcessSample sampleDriverProcesses();

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
inline constexpr size_t kMinSoakRows = 8;

[[nodiscard]] tSoakGrowth growthOf(const std::vector<tSoakRow>& rows);
// Describes each growth above its limit; empty if there is none.
[[nodiscard]] std::string excessiveGrowth(const tSoakGrowth& all);
// Formats the rows as a table; omits rows if there are many.
[[nodiscard]] std::string soakTable(const std::vector<tSoakRow>& rows);
// "File 5, Key 14".
[[nodiscard]] std::string handleText(const tHandleCounts& handles);

}  // namespace nTests

#endif
