// What surrounds an update and differs between the two worlds.
#ifndef TESTS_CONTRACT_UPDATEWORLD_H
#define TESTS_CONTRACT_UPDATEWORLD_H

#include <string>
#include <vector>

namespace nTests {

// The machine as it comes: drive C: is not encrypted, driver packages can be installed.
void resetUpdateWorld();
void encryptDrive();
// Whether drive C: is encrypted cannot be found out.
void breakEncryptionTest();

// The command lines with which driver packages were installed, in order.
[[nodiscard]] std::vector<std::string> packageCommandLines();

// The system's temporary directory for this process.
void useTemporaryDirectory(const std::string& path);

}  // namespace nTests

#endif
