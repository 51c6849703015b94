#ifndef TOOLS_QUENRA_OUTPUT_SYSTEMREASON_H
#define TOOLS_QUENRA_OUTPUT_SYSTEMREASON_H

#include <string>
#include <system_error>

namespace nCommandLine {

// The system's reason for a failed operation on a file or a stream, to end a message with:
// "no such file". The same phrase for the same reason, on every system and for every verb.
[[nodiscard]] std::string reasonOf(const std::error_code& error);

// True if the reader of a pipe has closed its end.
[[nodiscard]] bool isClosedPipe(const std::error_code& error) noexcept;

}  // namespace nCommandLine

#endif
