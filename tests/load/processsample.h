#ifndef TESTS_LOAD_PROCESSSAMPLE_H
#define TESTS_LOAD_PROCESSSAMPLE_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace nTests {

// What a process, or several together, take of the system.
struct tProcessSample {
  uint32_t handles;
  uint64_t privateKib;
};

// What is in use of a process's heaps: what was allocated and is not freed.
struct tHeapSample {
  uint64_t blocks;
  uint64_t bytes;
};

// How many handles of each kind of object, in the order of the kinds' names. What counts blocks of the
// heap must not take any itself.
inline constexpr std::array<std::string_view, 12> kHandleKinds{
    "Directory", "Event",   "File",      "IoCompletion", "Key",   "Mutant",
    "Process",   "Section", "Semaphore", "Thread",       "Token", "another kind"};
using tHandleCounts = std::array<uint32_t, kHandleKinds.size()>;
// The last for names that are not there.
[[nodiscard]] constexpr size_t indexOfHandleKind(std::string_view name) noexcept {
  const auto* const known = std::find(kHandleKinds.begin(), kHandleKinds.end() - 1, name);
  return static_cast<size_t>(known - kHandleKinds.begin());
}

[[nodiscard]] tProcessSample sampleThisProcess();
// Of this process, while no other thread of it runs.
[[nodiscard]] tHeapSample sampleHeaps();
[[nodiscard]] tHandleCounts countHandles();
// The processes in which Wine runs drivers.
[[nodiscard]] tProcessSample sampleDriverProcesses();

}  // namespace nTests

#endif
