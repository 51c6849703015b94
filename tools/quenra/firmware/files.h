#ifndef TOOLS_QUENRA_FIRMWARE_FILES_H
#define TOOLS_QUENRA_FIRMWARE_FILES_H

#include <string>
#include <string_view>

namespace nCommandLine {

// Paths are UTF-8. Both throw tCommandError where the system refuses.

[[nodiscard]] std::string readFile(const std::string& path);

// Whole or not at all: a file that was there before stays until the new one is complete.
void writeFile(const std::string& path, std::string_view content);

}  // namespace nCommandLine

#endif
