// The result of a command: its exit code, its warnings, and the error that ended it; how they are
// printed, and written to the document that --json prints.
#ifndef TOOLS_QUENRA_OUTPUT_DIAGNOSTICS_H
#define TOOLS_QUENRA_OUTPUT_DIAGNOSTICS_H

#include <cstdint>
#include <optional>
#include <ostream>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/commandline/grammar.h"

namespace nCommandLine {

class tJsonDocument;

// With a program, any other number is the program's own.
enum class tExitCode : int32_t {
  done = 0,
  failure = 1,
  wrongUsage = 2,
  notSupported = 3,
  noController = 4,
  // Not `failure`: a script that repeats a failed command would change the machine a second time.
  outputFailedAfterChange = 5,
  capturesDiffer = 9,
  // The codes of a verb that runs a program. Few programs use these numbers, and every shell passes them
  // on: those above 127 are cut to eight bits by some, and denote signals in others.
  demoted = 124,
  notConnected = 125,
  programNotStarted = 126,
};

[[nodiscard]] constexpr int exitNumber(tExitCode code) noexcept {
  return static_cast<int>(code);
}

// The exit codes that the help and the guide document. Scripts rely on them.
inline constexpr tExitCodeRow kExitCodes[] = {
    {exitNumber(tExitCode::done), "done"},
    {exitNumber(tExitCode::failure),
     "the library reported a failure, an image has a fault, or a file or the output cannot be "
     "used"},
    {exitNumber(tExitCode::wrongUsage), "wrong usage"},
    {exitNumber(tExitCode::notSupported), "not supported on this machine"},
    {exitNumber(tExitCode::noController), "no controller could be reached"},
    {exitNumber(tExitCode::outputFailedAfterChange),
     "the machine was changed, but the output could not be written"},
    {exitNumber(tExitCode::capturesDiffer), "two captures differ"},
    {exitNumber(tExitCode::demoted),
     "with a program: the route was demoted, and the program was ended"},
    {exitNumber(tExitCode::notConnected),
     "with a program: the route could not be connected; the program was not started"},
    {exitNumber(tExitCode::programNotStarted), "with a program: the program could not be started"},
};

// An operation of the library that succeeded with a positive code.
struct tWarning {
  std::string about;  // the operation: "the update"
  int32_t code;
};

// Meaning and remedy of a status code at the site that reported it. They replace the texts of the
// status table, which cover every site of the code; an empty text keeps that of the table.
struct tSiteExplanation {
  std::string meaning;
  std::string advice;
};

// Another client's route that blocks a reservation.
struct tRouteHolder {
  uint64_t session;
  uint32_t ticket;
  bool operator==(const tRouteHolder&) const = default;
};

// Ends a verb without an answer. The command line reports it, as text and as JSON.
class tCommandError : public std::runtime_error {
 public:
  // `what()` is one sentence about the operation that failed. `status` is the library's code if the
  // library failed; the advice is then the explanation of the code.
  tCommandError(tExitCode exitCode, const std::string& what, std::optional<int32_t> status)
      : std::runtime_error(what), exitCode_(exitCode), status_(status) {}
  // As above, with the explanation of the site that reported the status.
  tCommandError(tExitCode exitCode, const std::string& what, int32_t status, tSiteExplanation site)
      : std::runtime_error(what), exitCode_(exitCode), status_(status), site_(std::move(site)) {}
  // As above, with additional advice of the program after that of the status.
  tCommandError(tExitCode exitCode, const std::string& what, std::optional<int32_t> status,
                std::string advice)
      : std::runtime_error(what),
        exitCode_(exitCode),
        status_(status),
        advice_(std::move(advice)) {}
  // Implicit, so that both errors are reported alike.
  tCommandError(const tUsageError& error)
      : std::runtime_error(error),
        exitCode_(tExitCode::wrongUsage),
        advice_(error.advice()),
        suggestions_(error.suggestions()) {}

  [[nodiscard]] tExitCode exitCode() const noexcept { return exitCode_; }
  void setExitCode(tExitCode exitCode) noexcept { exitCode_ = exitCode; }
  [[nodiscard]] std::optional<int32_t> status() const noexcept { return status_; }
  // Empty if the status table explains the status.
  [[nodiscard]] const std::optional<tSiteExplanation>& site() const noexcept { return site_; }
  [[nodiscard]] const std::vector<tRouteHolder>& holders() const noexcept { return holders_; }
  void setHolders(std::vector<tRouteHolder> holders) { holders_ = std::move(holders); }
  [[nodiscard]] const std::string& advice() const noexcept { return advice_; }
  [[nodiscard]] const std::vector<std::string>& suggestions() const noexcept {
    return suggestions_;
  }

 private:
  tExitCode exitCode_;
  std::optional<int32_t> status_;
  std::optional<tSiteExplanation> site_;
  std::string advice_;
  std::vector<tRouteHolder> holders_;
  std::vector<std::string> suggestions_;
};

// Print on the error stream.
void printError(std::ostream& stream, const tCommandError& error);
void printWarnings(std::ostream& stream, std::span<const tWarning> warnings);

// Writes the members of an error document. `command` is the verb, empty if none was recognised.
void writeError(tJsonDocument& document, const tCommandError& error, std::string_view command);
// Writes the member "holders".
void writeHolders(tJsonDocument& document, std::span<const tRouteHolder> holders);

}  // namespace nCommandLine

#endif
