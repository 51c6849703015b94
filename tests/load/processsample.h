#ifndef TESTS_LOAD_PROCESSSAMPLE_H
#define TESTS_LOAD_PROCESSSAMPLE_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

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

}  // namespace nTests

#endif
