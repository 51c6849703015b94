#ifndef SIMULATOR_SCENARIO_DRIVERSTORE_H
#define SIMULATOR_SCENARIO_DRIVERSTORE_H

#include <cstdint>
#include <string>
#include <vector>

namespace nSimulator {

// The scenario of the machine's driver-store tool.
struct tDriverStoreBehaviour {
  uint32_t seconds = 0;   // duration of a run
  uint32_t exitCode = 0;  // 0: success if the package is readable
};

// One run of the tool.
struct tDriverStoreRun {
  std::string commandLine;  // unchanged, in the process code page
  std::string file;         // the package's file
  bool isReadable = false;
  uint64_t size = 0;
  std::string sha256;  // in hexadecimal; empty if the file cannot be read
};

// All functions throw std::system_error.
[[nodiscard]] tDriverStoreBehaviour driverStoreBehaviour();
void setDriverStoreBehaviour(const tDriverStoreBehaviour& behaviour);
void noteDriverStoreRun(const tDriverStoreRun& run);
// Oldest first.
[[nodiscard]] std::vector<tDriverStoreRun> driverStoreRuns();
void clearDriverStoreRuns();

}  // namespace nSimulator

#endif
