#include <algorithm>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "tools/commandline/argumenttext.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/output/streams.h"
#include "tools/quenra/verbs/routeholding.h"
#include "tools/quenra/verbs/routes.h"
#include "tools/quenra/verbs/verbs.h"

namespace nCommandLine {
namespace {

using std::chrono::milliseconds;

// The interval at which a held line is tried again.
constexpr milliseconds kRetryInterval{200};
constexpr milliseconds kDefaultGrace{5000};

// A time of the command line; empty without the option.
std::optional<milliseconds> parseTime(const tArguments& arguments, std::string_view option,
                                      const char* alternative) {
  const auto given = arguments.optional(option);
  const auto time = given ? parseSeconds(*given) : std::nullopt;
  if (given && !time) {
    throw tUsageError(numberFault(*given, "a number of seconds"),
                      std::string("Give a decimal number such as 2 or 0.25, with at most three "
                                  "places after the point, or leave out ")
                              .append(option) +
                          alternative,
                      {});
  }
  return time;
}

tHoldLimits parseLimits(const tArguments& arguments) {
  tHoldLimits limits;
  limits.program = arguments.all(nWords::kProgram);
  limits.untilDemoted = arguments.has(nWords::kUntilDemoted);
  limits.time = parseTime(arguments, nWords::kFor, " to hold the route until Ctrl-C.")
                    .value_or(milliseconds::max());
  limits.grace = parseTime(arguments, nWords::kGrace, " for 5 seconds.").value_or(kDefaultGrace);
  for (const std::string_view option : {nWords::kFor, nWords::kUntilDemoted}) {
    if (!limits.program.empty() && arguments.has(option)) {
      throw tUsageError(std::string(option) + " and a program cannot be used together",
                        "The end of the program ends the route.", {});
    }
  }
  if (limits.program.empty() && arguments.has(nWords::kGrace)) {
    throw tUsageError("--grace has no meaning without a program",
                      "Leave it out, or give a program after --.", {});
  }
  return limits;
}

void checkProgramName(const tHoldLimits& limits) {
  const std::string_view fault =
      limits.program.empty() ? "" : faultOfProgramName(limits.program.front());
  if (!fault.empty()) {
    throw notStarted(limits.program.front(), fault);
  }
}

// The first route with the requested polarity.
tRoute chooseRoute(tRoutingSession& session, const tRouteRequest& request) {
  const std::vector<tRoute> routes = session.calculate(request);
  const auto chosen = std::ranges::find(routes, request.inverted, &tRoute::inverted);
  for (const tRoute& route : routes) {
    if (chosen == routes.end() || route.ticket != chosen->ticket) {
      session.destroy(route.ticket);
    }
  }
  if (chosen == routes.end() && !routes.empty()) {
    throw tCommandError(tExitCode::notSupported,
                        "the route from " + request.from + " to " + request.to +
                            " inverts the signal; add --invert to connect it",
                        std::nullopt);
  }
  if (chosen == routes.end()) {
    rejectWithoutRoute(request);
  }
  return *chosen;
}

// Reserves the route, and as long as others hold its line, again until the time is over.
milliseconds reserve(tHeldRoute& route, milliseconds time, iInterruption& interruption,
                     tRouteReporter& reporter) {
  const tStopwatch stopwatch;
  std::vector<tRouteHolder> reported;
  for (;;) {
    try {
      route.reserve();
      return stopwatch.elapsed();
    } catch (const tCommandError& error) {
      if (error.holders().empty() || stopwatch.elapsed() >= time) {
        throw;
      }
      if (error.holders() != reported) {
        reported = error.holders();
        reporter.waiting(reported, time - stopwatch.elapsed());
      }
    }
    std::this_thread::sleep_for(
        std::clamp(time - stopwatch.elapsed(), milliseconds(0), kRetryInterval));
    if (interruption.hasOccurred()) {
      throw tCommandError(tExitCode::failure,
                          "interrupted while another route held the line; no route was connected",
                          std::nullopt);
    }
  }
}

struct tConnection {
  tHoldLimits limits;
  milliseconds waitTime{0};
  tProgramOutput output = tProgramOutput::inherited;
};

tHolding connect(tRoutingSession& session, const tRoute& chosen, const tConnection& connection,
                 tDemotions& demotions, const tPorts& ports, tRouteReporter& reporter) {
  tHolding holding;
  holding.route = chosen;
  {
    tHeldRoute route(session, chosen.ticket);
    holding.waited = reserve(route, connection.waitTime, ports.interruption, reporter);
    route.program();
    holding.path = route.path();
    reporter.connected(holding);
    holdRoute(holding, connection.limits, demotions, ports, connection.output, reporter);
    if (!holding.demotions.empty()) {
      route.markFailed();
    }
  }
  reporter.released(holding);
  return holding;
}

// A demoted route carried no signal from then on: a failure unless the caller waited for it.
tExitCode exitCodeOf(const tHolding& holding, const tHoldLimits& limits) {
  const bool wasDemoted = !holding.demotions.empty();
  if (holding.program) {
    return wasDemoted ? tExitCode::demoted : static_cast<tExitCode>(holding.program->exitCode);
  }
  return wasDemoted && !limits.untilDemoted ? tExitCode::failure : tExitCode::done;
}

void writeDemotions(tJsonDocument& document, const tHolding& holding) {
  document.beginArray("demotions");
  for (const tDemotion& demotion : holding.demotions) {
    document.beginObject();
    document.number("reason", demotion.reason);
    document.number("afterMilliseconds", demotion.after.count());
    document.endObject();
  }
  document.endArray();
}

void writeProgram(tJsonDocument& document, const tHoldLimits& limits, const tHolding& holding) {
  if (!holding.program) {
    document.null("program");
    return;
  }
  document.beginObject("program");
  document.beginArray("words");
  for (const std::string& word : limits.program) {
    document.textItem(word);
  }
  document.endArray();
  document.number("exitCode", static_cast<int32_t>(holding.program->exitCode));
  document.truth("terminated", holding.program->wasTerminated);
  document.endObject();
}

void printDocument(const tVerbContext& context, const tRouteRequest& request,
                   const tHoldLimits& limits, const tHolding& holding,
                   const std::vector<tWarning>& warnings) {
  tJsonDocument document("route-connect", exitCodeOf(holding, limits), warnings);
  document.text("from", request.from);
  document.text("to", request.to);
  document.beginObject("route");
  writeRoute(document, holding.route, holding.path);
  document.number("ticket", holding.route.ticket);
  document.endObject();
  document.number("heldMilliseconds", holding.held.count());
  document.truth("interrupted", holding.interrupted);
  writeDemotions(document, holding);
  document.number("waitedMilliseconds", holding.waited.count());
  writeProgram(document, limits, holding);
  context.print(document);
}

tExitCode connectAndHold(const tArguments& arguments, const tVerbContext& context,
                         const tConnection& connection) {
  tDemotions demotions;
  tRoutingSession session(context.ports.routing, routingDevice(context.ports.library), demotions);
  const tRouteRequest request = parseRouteRequest(arguments, session);
  // Called before the first step, so that an interruption runs the teardown.
  context.ports.interruption.intercept();
  tRouteReporter reporter(context, connection.limits);
  const tHolding holding = connect(session, chooseRoute(session, request), connection, demotions,
                                   context.ports, reporter);
  printWarnings(context.streams.error, session.warnings());
  if (context.json) {
    printDocument(context, request, connection.limits, holding, session.warnings());
  }
  return exitCodeOf(holding, connection.limits);
}

}  // namespace

tExitCode runRouteConnect(const tArguments& arguments, const tVerbContext& context) {
  const tConnection connection{
      parseLimits(arguments),
      parseTime(arguments, nWords::kWait, " to fail at once.").value_or(milliseconds(0)),
      context.json ? tProgramOutput::toErrorStream : tProgramOutput::inherited};
  checkProgramName(connection.limits);
  try {
    return connectAndHold(arguments, context, connection);
  } catch (tCommandError& error) {
    // Distinct from the exit codes of the program.
    if (!connection.limits.program.empty() && error.exitCode() != tExitCode::programNotStarted) {
      error.setExitCode(tExitCode::notConnected);
    }
    throw;
  }
}

}  // namespace nCommandLine
