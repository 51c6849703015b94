// Holding a connected route: for a time, until a demotion, or while a program runs.
#ifndef TOOLS_QUENRA_VERBS_ROUTEHOLDING_H
#define TOOLS_QUENRA_VERBS_ROUTEHOLDING_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/quenra/programs/programs.h"
#include "tools/quenra/routing/troutingsession.h"
#include "tools/quenra/verbs/verbs.h"

namespace nCommandLine {

// Until when a route is held; without any limit until Ctrl-C.
struct tHoldLimits {
  std::chrono::milliseconds time = std::chrono::milliseconds::max();
  bool untilDemoted = false;
  std::vector<std::string> program;  // with its arguments; empty for none
  // The time for the program to end after a demotion.
  std::chrono::milliseconds grace{0};
};

struct tDemotion {
  int32_t reason;
  std::chrono::milliseconds after;
};

// How a program ended.
struct tProgramEnd {
  uint32_t exitCode = 0;
  bool wasTerminated = false;
};

// The history of a connected route.
struct tHolding {
  tRoute route;
  std::vector<std::string> path;
  std::chrono::milliseconds waited{0};
  std::vector<tDemotion> demotions;
  std::optional<tProgramEnd> program;
  std::chrono::milliseconds held{0};
  bool interrupted = false;
};

// Reports events as they happen: on the standard output, unless a document or a program uses it, then on
// the error stream; with --json-lines also as lines.
class tRouteReporter {
 public:
  tRouteReporter(const tVerbContext& context, const tHoldLimits& limits);

  void waiting(const std::vector<tRouteHolder>& holders, std::chrono::milliseconds time);
  void connected(const tHolding& holding);
  void programStarted();
  void demoted(const tDemotion& demotion);
  void programEnded(const tProgramEnd& end);
  void released(const tHolding& holding);

 private:
  void print(const std::string& line);
  void write(std::string_view event, const tEventLines::tWriteMembers& members) const;

  const tHoldLimits& limits_;
  std::ostream& stream_;
  std::ostream& error_;
  std::string_view prefix_;
  tEventLines* events_;
};

// The error for a program that cannot be started.
[[nodiscard]] tCommandError notStarted(const std::string& name, std::string_view reason);

// Holds a programmed route until its limit. Throws tCommandError if the program cannot be started.
void holdRoute(tHolding& holding, const tHoldLimits& limits, tDemotions& demotions,
               const tPorts& ports, tProgramOutput output, tRouteReporter& reporter);

}  // namespace nCommandLine

#endif
