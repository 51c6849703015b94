#ifndef TOOLS_QUENRA_FIRMWARE_FILES_H
#define TOOLS_QUENRA_FIRMWARE_FILES_H

#include <string>
#include <string_view>

namespace nCommandLine {

// Paths are UTF-8. On failure both throw tCommandError with the path and the system's reason.

[[nodiscard]] std::string readFile(const std::string& path);

// Writes a file completely or not at all: an existing file stays until the new one is complete.
void writeFile(const std::string& path, std::string_view content);

}  // namespace nCommandLine

#endif
