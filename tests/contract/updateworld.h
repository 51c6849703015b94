// The environment of an update, which differs between Windows and the fake Windows.
#ifndef TESTS_CONTRACT_UPDATEWORLD_H
#define TESTS_CONTRACT_UPDATEWORLD_H

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace nTests {

// Restores the default: drive C: not encrypted, driver packages installable, random bytes succeed.
void resetUpdateWorld();
void encryptDrive();
// Makes the service that reports disk encryption fail.
void breakEncryptionTest();

// The command lines with which driver packages were installed, in order.
[[nodiscard]] std::vector<std::string> packageCommandLines();

// Runs the hook right before the library looks for the driver-store tool, then hides the tool.
void loseTool(std::function<void()> hook);
// Runs the hook right before the library starts the driver-store tool.
void beforeToolStart(std::function<void()> hook);

// Sets the system's temporary directory for this process.
void useTemporaryDirectory(const std::filesystem::path& path);

// Renames a file or folder that the library holds open; Windows allows that to no process.
void moveAside(const std::filesystem::path& from, const std::filesystem::path& to);
// Create a link to a file or folder, and remove it if it still exists.
void plantLink(const std::filesystem::path& link, const std::filesystem::path& target);
void removeLink(const std::filesystem::path& link);
// True if the system can remove a link without its target. Wine cannot.
[[nodiscard]] bool removesLinks();

// The ways in which another process can open an existing file or folder.
enum class tOpening : uint8_t {
  reading,  // sharing the file for reading only, as the driver-store tool may do
  writing,
  removing,
};
[[nodiscard]] bool canOpen(const std::filesystem::path& path, tOpening opening);

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
