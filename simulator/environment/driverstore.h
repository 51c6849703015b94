#ifndef SIMULATOR_ENVIRONMENT_DRIVERSTORE_H
#define SIMULATOR_ENVIRONMENT_DRIVERSTORE_H

#include <cstdint>
#include <string>
#include <vector>

namespace nSimulator {

// How the machine's driver-store tool behaves.
struct tDriverStoreBehaviour {
  uint32_t seconds = 0;   // how long it takes
  uint32_t exitCode = 0;  // how it ends
};

// One run of the tool.
struct tDriverStoreRun {
  std::string commandLine;  // as it came, in the process code page
  std::string file;         // the package's file
  bool isReadable = false;
  uint64_t size = 0;
  std::string sha256;  // in hexadecimal; empty when the file cannot be read
};

// All throw std::system_error.
[[nodiscard]] tDriverStoreBehaviour driverStoreBehaviour();
void setDriverStoreBehaviour(const tDriverStoreBehaviour& behaviour);
void noteDriverStoreRun(const tDriverStoreRun& run);
// In order.
[[nodiscard]] std::vector<tDriverStoreRun> driverStoreRuns();
void clearDriverStoreRuns();

}  // namespace nSimulator

#endif
