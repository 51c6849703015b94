#ifndef TOOLS_QUENRA_FIRMWARE_FILES_H
#define TOOLS_QUENRA_FIRMWARE_FILES_H

#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace nCommandLine {

// Paths are UTF-8. On failure the functions throw tCommandError with the path and the system's reason.

[[nodiscard]] std::string readFile(const std::string& path);

enum class tExistingFile : uint8_t {
  keep,
  replace
};

// Creates a new file for writing. Returns null with the reason in errno on failure or if it exists.
using tCreateFile = std::function<std::FILE*(const std::filesystem::path& path)>;
[[nodiscard]] std::FILE* createFile(const std::filesystem::path& path) noexcept;

// Writes a file completely or not at all, through a new file of a random name beside it. An existing
// file stays until the new one is complete; with `keep` it stays, and the call fails.
void writeFile(const std::string& path, std::string_view content, tExistingFile existing,
               const tCreateFile& create = createFile);

[[nodiscard]] bool fileExists(const std::string& path);
// True if both paths name one existing file.
[[nodiscard]] bool isSameFile(const std::string& path, const std::string& other);

}  // namespace nCommandLine

#endif
