#ifndef TOOLS_QUENRA_TCOMMANDERROR_H
#define TOOLS_QUENRA_TCOMMANDERROR_H

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tools/quenra/exitcode.h"

namespace nCommandLine {

// Ends a verb without an answer. Whoever runs the command line reports it, as text and as JSON.
class tCommandError : public std::runtime_error {
 public:
  // `what()` says in one sentence what could not be done. `status` is the library's code where it
  // was the library that failed; then its explanation is the advice.
  tCommandError(tExitCode exitCode, const std::string& what, std::optional<int32_t> status)
      : std::runtime_error(what), exitCode_(exitCode), status_(status) {}
  // ... with advice of the program's own behind that of the status.
  tCommandError(tExitCode exitCode, const std::string& what, std::optional<int32_t> status,
                std::string advice)
      : std::runtime_error(what),
        exitCode_(exitCode),
        status_(status),
        advice_(std::move(advice)) {}
  // Wrong usage: `suggestions` are what may have been meant instead.
  tCommandError(const std::string& what, std::string advice, std::vector<std::string> suggestions)
      : std::runtime_error(what),
        exitCode_(tExitCode::wrongUsage),
        advice_(std::move(advice)),
        suggestions_(std::move(suggestions)) {}

  [[nodiscard]] tExitCode exitCode() const noexcept { return exitCode_; }
  [[nodiscard]] std::optional<int32_t> status() const noexcept { return status_; }
  [[nodiscard]] const std::string& advice() const noexcept { return advice_; }
  [[nodiscard]] const std::vector<std::string>& suggestions() const noexcept {
    return suggestions_;
  }

 private:
  tExitCode exitCode_;
  std::optional<int32_t> status_;
  std::string advice_;
  std::vector<std::string> suggestions_;
};

}  // namespace nCommandLine

#endif
