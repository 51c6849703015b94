#include "tools/quenra/report/reportfacts.h"

#include <algorithm>
#include <map>
#include <utility>

#include "quenra_status.h"
#include "tools/quenra/tables/statustable.h"

namespace nCommandLine {
namespace {

tReportWarning warningOf(std::string fact, int32_t code) {
  const tStatusExplanation status = explainStatus(code);
  return {std::move(fact), codeAndConstant(code) + ": " + std::string(status.meaning),
          std::string(status.advice)};
}

// ---- The controller ----

void addOpening(const tController& controller, tReportFacts& facts) {
  const int32_t code = controller.code();
  if (code > 0) {
    facts.warnings.push_back(warningOf("opening the controller succeeded with a warning", code));
  }
  if (code < 0) {
    const tOpeningFailure failure = explainOpeningFailure(controller);
    tReportWarning warning = warningOf(failure.fact, code);
    if (!failure.explanation.advice.empty()) {
      warning.remedy = failure.explanation.advice;
    }
    facts.warnings.push_back(std::move(warning));
  }
}

// One warning for each code, with the attributes that reported it.
void addReadings(tReportFacts& facts) {
  std::map<int32_t, std::vector<std::string_view>> namesByCode;
  for (const tAttributeReadings& attribute : facts.machine) {
    for (const tReading& reading : attribute.readings) {
      std::vector<std::string_view>* const names =
          reading.state() == tReadingState::failed || reading.code > 0 ? &namesByCode[reading.code]
                                                                       : nullptr;
      if (names != nullptr && (names->empty() || names->back() != attribute.row->name)) {
        names->push_back(attribute.row->name);
      }
    }
  }
  for (const auto& [code, names] : namesByCode) {
    std::string fact = code < 0 ? "cannot read" : "a warning at reading";
    for (const std::string_view name : names) {
      fact.append(name == names.front() ? " " : ", ").append(name);
    }
    facts.warnings.push_back(warningOf(std::move(fact), code));
  }
}

void readController(const tController& controller, tReportFacts& facts) {
  const int32_t selfTest = controller.selfTest();
  if (selfTest != 0) {
    facts.warnings.push_back(warningOf(
        selfTest < 0 ? "the self-test failed" : "the self-test passed with a warning", selfTest));
  }
  facts.machine = readMachine(controller);
  facts.updateMachine = readUpdateMachine(controller);
  addReadings(facts);
  if (facts.updateMachine->awaitsRestart()) {
    facts.warnings.push_back({"an update of the Marten awaits a restart", "",
                              "Restart the machine: it then reports the installed version."});
  }
}

// ---- The plan of an update ----

void addPlan(iUpdateFacts& updateFacts, tReportFacts& facts) {
  tReportPlan& plan = *facts.plan;
  const tUpdateMachine* const machine = facts.updateMachine ? &*facts.updateMachine : nullptr;
  plan.sections = planSections(plan.image, machine, false);
  plan.obstacles = findObstacles({machine, plan.sections, {}}, updateFacts);
  for (const tObstacle& obstacle : plan.obstacles) {
    const std::string section =
        obstacle.section ? "section " + std::to_string(*obstacle.section) + ": " : "";
    facts.warnings.push_back({"the update is blocked: " + section + obstacle.fact,
                              obstacle.code ? codeAndConstant(*obstacle.code) : "",
                              obstacle.remedy});
  }
}

// ---- Trigger lines ----

// Destroys calculated routes, also if a call fails.
class tCalculation {
 public:
  tCalculation(tRoutingSession& session, const tRouteRequest& request)
      : session_(session), routes_(session.calculate(request)) {}
  tCalculation(const tCalculation&) = delete;
  tCalculation& operator=(const tCalculation&) = delete;
  ~tCalculation() {
    for (const tRoute& route : routes_) {
      session_.destroy(route.ticket);
    }
  }

  [[nodiscard]] const std::vector<tRoute>& routes() const noexcept { return routes_; }
  // Removes the first route: the caller destroys it.
  [[nodiscard]] tRoute takeFirst() {
    const tRoute route = routes_.front();
    routes_.erase(routes_.begin());
    return route;
  }

 private:
  tRoutingSession& session_;
  std::vector<tRoute> routes_;
};

// The driver adds to the cost of a route whose resources another route holds. Nothing is reserved.
bool isHeld(tRoutingSession& session, tRouteRequest request) {
  const tCalculation respecting(session, request);
  request.ignoresReservations = true;
  const tCalculation ignoring(session, request);
  return !respecting.routes().empty() && !ignoring.routes().empty() &&
         respecting.routes().front().cost > ignoring.routes().front().cost;
}

// The holders, which only a failed reservation reports. A reservation that succeeds, because the line has
// become free, is released.
std::vector<tRouteHolder> holdersOf(tRoutingSession& session, const tRouteRequest& request) {
  tCalculation calculation(session, request);
  if (calculation.routes().empty()) {
    return {};
  }
  tHeldRoute route(session, calculation.takeFirst().ticket);
  try {
    route.reserve();
  } catch (const tCommandError& error) {
    return error.holders();
  }
  return {};
}

bool isOffered(const tTerminal& terminal) {
  return terminal.visibility == "public" && !terminal.isMaskedOut;
}

// Two sources: a route does not conflict with a held one of the same source.
std::vector<std::string> sourcesFor(const tTerminal& destination,
                                    const std::vector<tTerminal>& terminals) {
  constexpr size_t kSources = 2;
  std::vector<std::string> sources;
  for (const tTerminal& terminal : terminals) {
    if (sources.size() < kSources && isOffered(terminal) && terminal.name != destination.name) {
      sources.push_back(terminal.name);
    }
  }
  return sources;
}

tTerminalFacts examine(tRoutingSession& session, const tTerminal& terminal,
                       const std::vector<tTerminal>& terminals, bool namesHolders) {
  tTerminalFacts facts{terminal};
  if (!isOffered(terminal)) {
    return facts;
  }
  for (const std::string& source : sourcesFor(terminal, terminals)) {
    const tRouteRequest request{source, terminal.name};
    if (isHeld(session, request)) {
      facts.use = tTerminalUse::held;
      facts.holders = namesHolders ? holdersOf(session, request) : std::vector<tRouteHolder>();
      return facts;
    }
    facts.use = tTerminalUse::free;
  }
  return facts;
}

void addTerminals(const tReportSources& sources, const tReportOptions& options,
                  tReportFacts& facts) {
  if (sources.routing == nullptr) {
    facts.whyNoTerminals = "The capture has no trigger terminals.";
    for (const tTerminal& terminal : sources.terminals) {
      facts.terminals.push_back({terminal});
    }
    return;
  }
  try {
    tDemotions demotions;
    tRoutingSession session(*sources.routing, routingDevice(sources.library), demotions);
    const std::vector<tTerminal> terminals = session.terminals();
    for (const tTerminal& terminal : terminals) {
      facts.terminals.push_back(examine(session, terminal, terminals, options.namesHolders));
    }
    facts.holdersAreKnown = options.namesHolders;
  } catch (const tCommandError& error) {
    facts.terminals.clear();
    facts.whyNoTerminals = "The trigger lines could not be examined.";
    const int32_t code = error.status().value_or(0);
    facts.warnings.push_back(code < 0 ? warningOf(error.what(), code)
                                      : tReportWarning{error.what(), "", error.advice()});
  }
}

}  // namespace

std::string tReportFacts::shown(uint32_t attribute) const {
  for (const tAttributeReadings& attributes : machine) {
    if (attributes.row->id == attribute && !attributes.readings.empty() &&
        attributes.readings.front().state() == tReadingState::value) {
      return shownValue(attributes.row, attributes.readings.front().value);
    }
  }
  return "";
}

tReportFacts gatherReport(const tReportSources& sources, const tReportOptions& options,
                          std::unique_ptr<tReportPlan> plan) {
  tReportFacts facts;
  facts.origin = options.origin;
  facts.plan = std::move(plan);
  {
    const tController controller(sources.library);
    addOpening(controller, facts);
    if (controller.code() >= 0) {
      readController(controller, facts);
    }
  }
  if (facts.plan) {
    addPlan(sources.updateFacts, facts);
  }
  addTerminals(sources, options, facts);
  return facts;
}

}  // namespace nCommandLine
