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

// Meaning and remedy of a status code at the site that reported it. They replace the texts of the
// catalogue, which cover every site of the code; an empty text keeps that of the catalogue.
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
  // Wrong usage. `suggestions` are words that the user may have meant.
  tCommandError(const std::string& what, std::string advice, std::vector<std::string> suggestions)
      : std::runtime_error(what),
        exitCode_(tExitCode::wrongUsage),
        advice_(std::move(advice)),
        suggestions_(std::move(suggestions)) {}

  [[nodiscard]] tExitCode exitCode() const noexcept { return exitCode_; }
  [[nodiscard]] std::optional<int32_t> status() const noexcept { return status_; }
  // Empty if the catalogue explains the status.
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

}  // namespace nCommandLine

#endif
