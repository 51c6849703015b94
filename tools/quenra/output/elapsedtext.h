#ifndef TOOLS_QUENRA_OUTPUT_ELAPSEDTEXT_H
#define TOOLS_QUENRA_OUTPUT_ELAPSEDTEXT_H

#include <chrono>
#include <string>

namespace nCommandLine {

// "0.4 s", "125.0 s"
[[nodiscard]] std::string elapsedText(std::chrono::milliseconds elapsed);

}  // namespace nCommandLine

#endif
