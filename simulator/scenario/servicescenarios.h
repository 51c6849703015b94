#ifndef SIMULATOR_SCENARIO_SERVICESCENARIOS_H
#define SIMULATOR_SCENARIO_SERVICESCENARIOS_H

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace nSimulator {

// The scenarios of the simulated operating system services. All functions throw std::system_error.

// The encryption of drive C: that the machine's management service reports, as names of the lists
// below. The default machine is "off".
struct tEncryption {
  std::string protection = "off";
  std::string failingStep;  // empty: none
};

inline constexpr std::array<std::string_view, 4> kProtections = {"off", "on", "unknown",
                                                                 "no-volume"};
// In the order in which a program performs them.
inline constexpr std::array<std::string_view, 5> kEncryptionSteps = {"locator", "connect", "query",
                                                                     "result", "property"};

[[nodiscard]] tEncryption encryption();
void setEncryption(const tEncryption& encryption);

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

[[nodiscard]] tDriverStoreBehaviour driverStoreBehaviour();
void setDriverStoreBehaviour(const tDriverStoreBehaviour& behaviour);
void recordDriverStoreRun(const tDriverStoreRun& run);
// Oldest first.
[[nodiscard]] std::vector<tDriverStoreRun> driverStoreRuns();
void clearDriverStoreRuns();

}  // namespace nSimulator

#endif
