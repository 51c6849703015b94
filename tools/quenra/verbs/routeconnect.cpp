#include <algorithm>
#include <limits>

#include "tools/commandline/argumenttext.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/output/streams.h"
#include "tools/quenra/verbs/routes.h"
#include "tools/quenra/verbs/verbs.h"

namespace nCommandLine {
namespace {

using std::chrono::milliseconds;

// The polling interval for interruptions.
constexpr milliseconds kPollInterval{100};

// The time to hold the route; unlimited without the option.
milliseconds parseHoldTime(const tArguments& arguments) {
  const auto given = arguments.optional(nWords::kFor);
  if (!given) {
    return milliseconds::max();
  }
  const auto time = parseSeconds(*given);
  if (!time) {
    throw tUsageError(
        numberFault(*given, "a number of seconds"),
        "Give a decimal number such as 2 or 0.25, with at most three places after the "
        "point, or leave out --for to hold the route until Ctrl-C.",
        {});
  }
  return *time;
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

struct tDemotion {
  int32_t reason;
  milliseconds after;
};

// The library documents only the reason 101.
std::string reasonText(int32_t reason) {
  constexpr int32_t kHigherPriority = 101;
  return reason == kHigherPriority ? "the line was taken by a route of higher priority (101)"
                                   : "the library reports the reason " + std::to_string(reason);
}

// The history of a connected route.
struct tHolding {
  tRoute route;
  std::vector<std::string> path;
  std::vector<tDemotion> demotions;
  milliseconds held{0};
  bool interrupted = false;

  // A failure if the route was demoted: it carried no signal from then on.
  [[nodiscard]] tExitCode exitCode() const noexcept {
    return demotions.empty() ? tExitCode::done : tExitCode::failure;
  }
};

// Reports events while the route is held as they happen; with --json on the error stream, since the
// document follows at the end.
class tReporter {
 public:
  explicit tReporter(const tVerbContext& context)
      : stream_(context.json ? context.streams.error : context.streams.out),
        error_(context.streams.error),
        prefix_(context.json ? "quenra: " : "") {}

  void connected(const tHolding& holding, milliseconds time) {
    stream_ << prefix_ << "connected: " << pathText(holding.path)
            << (holding.route.inverted ? ", inverted" : "") << ", "
            << (time == milliseconds::max() ? "until Ctrl-C" : "for " + elapsedText(time))
            << std::endl;
  }
  void demoted(const tDemotion& demotion) {
    error_ << "quenra: the route was demoted after " << elapsedText(demotion.after) << ": "
           << reasonText(demotion.reason) << "; it no longer carries a signal" << std::endl;
  }
  void released(const tHolding& holding) {
    stream_ << prefix_ << "released after " << elapsedText(holding.held) << std::endl;
  }

 private:
  std::ostream& stream_;
  std::ostream& error_;
  std::string_view prefix_;
};

// Holds the route until its time expires or the user interrupts.
class tHolder {
 public:
  tHolder(tDemotions& demotions, iInterruption& interruption, tReporter& reporter)
      : demotions_(demotions), interruption_(interruption), reporter_(reporter) {}

  void hold(tHolding& holding, milliseconds time) {
    const tStopwatch stopwatch;
    do {
      const milliseconds rest = std::max(time - stopwatch.elapsed(), milliseconds(0));
      if (const auto reason = demotions_.take(std::min(rest, kPollInterval))) {
        holding.demotions.push_back({*reason, stopwatch.elapsed()});
        reporter_.demoted(holding.demotions.back());
      }
      holding.interrupted = interruption_.hasOccurred();
    } while (!holding.interrupted && stopwatch.elapsed() < time);
    holding.held = stopwatch.elapsed();
  }

 private:
  tDemotions& demotions_;
  iInterruption& interruption_;
  tReporter& reporter_;
};

tHolding connect(tRoutingSession& session, const tRoute& chosen, milliseconds time,
                 tReporter& reporter, tHolder& holder) {
  tHolding holding{chosen, {}, {}};
  {
    tHeldRoute route(session, chosen.ticket);
    route.reserve();
    route.program();
    holding.path = route.path();
    reporter.connected(holding, time);
    holder.hold(holding, time);
    if (!holding.demotions.empty()) {
      route.markFailed();
    }
  }
  reporter.released(holding);
  return holding;
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

void printDocument(std::ostream& stream, const tRouteRequest& request, const tHolding& holding,
                   const std::vector<tWarning>& warnings) {
  tJsonDocument document("route-connect", holding.exitCode(), warnings);
  document.text("from", request.from);
  document.text("to", request.to);
  document.beginObject("route");
  writeRoute(document, holding.route, holding.path);
  document.number("ticket", holding.route.ticket);
  document.endObject();
  document.number("heldMilliseconds", holding.held.count());
  document.truth("interrupted", holding.interrupted);
  writeDemotions(document, holding);
  document.writeTo(stream);
}

}  // namespace

tExitCode runRouteConnect(const tArguments& arguments, const tVerbContext& context) {
  const milliseconds time = parseHoldTime(arguments);
  tDemotions demotions;
  tRoutingSession session(context.ports.routing, routingDevice(context.ports.library), demotions);
  const tRouteRequest request = parseRouteRequest(arguments, session);
  // Called before the first step, so that an interruption runs the teardown.
  context.ports.interruption.intercept();
  tReporter reporter(context);
  tHolder holder(demotions, context.ports.interruption, reporter);
  const tHolding holding = connect(session, chooseRoute(session, request), time, reporter, holder);
  printWarnings(context.streams.error, session.warnings());
  if (context.json) {
    printDocument(context.streams.out, request, holding, session.warnings());
  }
  return holding.exitCode();
}

}  // namespace nCommandLine
