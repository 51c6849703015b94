#ifndef TOOLS_QUENRA_EXITCODE_H
#define TOOLS_QUENRA_EXITCODE_H

#include <cstdint>
#include <string_view>

namespace nCommandLine {

enum class tExitCode : uint8_t {
  done = 0,
  failure = 1,
  wrongUsage = 2,
  notSupported = 3,
  noController = 4,
  // Not `failure`: a script that repeats a failed command would change the machine a second time.
  outputFailedAfterChange = 5,
};

struct tExitCodeRow {
  tExitCode code;
  std::string_view meaning;
};

// The exit codes that the help and the guide document. Scripts rely on them.
inline constexpr tExitCodeRow kExitCodes[] = {
    {tExitCode::done, "done"},
    {tExitCode::failure,
     "the library reported a failure, an image has a fault, or a file or the output cannot be "
     "used"},
    {tExitCode::wrongUsage, "wrong usage"},
    {tExitCode::notSupported, "not supported on this machine"},
    {tExitCode::noController, "no controller could be reached"},
    {tExitCode::outputFailedAfterChange,
     "the machine was changed, but the output could not be written"},
};

[[nodiscard]] constexpr int exitNumber(tExitCode code) noexcept {
  return static_cast<int>(code);
}

}  // namespace nCommandLine

#endif
