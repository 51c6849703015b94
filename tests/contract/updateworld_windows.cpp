#include <windows.h>

#include "simulator/environment/driverstore.h"
#include "simulator/environment/encryption.h"
#include "tests/contract/updateworld.h"

namespace nTests {

void resetUpdateWorld() {
  nSimulator::setEncryption({});
  nSimulator::setDriverStoreBehaviour({});
  nSimulator::clearDriverStoreRuns();
}

void encryptDrive() {
  nSimulator::setEncryption({"on", ""});
}

void breakEncryptionTest() {
  nSimulator::setEncryption({"off", "connect"});
}

std::vector<std::string> packageCommandLines() {
  std::vector<std::string> lines;
  for (const nSimulator::tDriverStoreRun& run : nSimulator::driverStoreRuns()) {
    lines.push_back(run.commandLine);
  }
  return lines;
}

void useTemporaryDirectory(const std::string& path) {
  SetEnvironmentVariableA("TMP", path.c_str());
  SetEnvironmentVariableA("TEMP", path.c_str());
}

}  // namespace nTests
