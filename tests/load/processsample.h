#ifndef TESTS_LOAD_PROCESSSAMPLE_H
#define TESTS_LOAD_PROCESSSAMPLE_H

#include <cstdint>

namespace nTests {

// What a process, or several together, take of the system.
struct tProcessSample {
  uint32_t handles;
  uint64_t privateKib;
  uint64_t workingSetKib;
};

[[nodiscard]] tProcessSample sampleThisProcess();
// The processes in which Wine runs drivers.
[[nodiscard]] tProcessSample sampleDriverProcesses();

}  // namespace nTests

#endif
