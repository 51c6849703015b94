// The surroundings of an update that differ between the two worlds.
#ifndef TESTS_CONTRACT_UPDATEWORLD_H
#define TESTS_CONTRACT_UPDATEWORLD_H

#include <cstdint>
#include <string>
#include <vector>

namespace nTests {

// Restores the default: drive C: is not encrypted, driver packages can be installed, random bytes come.
void resetUpdateWorld();
void encryptDrive();
// Makes the service that reports disk encryption fail.
void breakEncryptionTest();

// The command lines with which driver packages were installed, in order.
[[nodiscard]] std::vector<std::string> packageCommandLines();

// Sets the system's temporary directory for this process.
void useTemporaryDirectory(const std::string& path);

// A call of the generator of random bytes, and errors with which it can fail.
struct tRandomFault {
  std::string call;
  uint32_t error;
  uint32_t shortMemory;
};
[[nodiscard]] std::vector<tRandomFault> randomFaults();
// Makes the call fail until resetUpdateWorld().
void failRandom(const std::string& call, uint32_t error);

// A file name under which a file can be opened, but not written.
[[nodiscard]] std::string nameOfFullDevice();

}  // namespace nTests

#endif
