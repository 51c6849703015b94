#include "tools/quenra/verbs/routes.h"

#include <algorithm>
#include <iterator>

#include "tools/commandline/argumenttext.h"
#include "tools/commandline/utf8text.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/output/table.h"
#include "tools/quenra/verbs/verbs.h"

namespace nCommandLine {
namespace {

// ---- Arguments ----

// The terminal's own name: users may write it in any case, unless two names differ only in that.
std::string terminalNamed(const std::string& text, const std::vector<tTerminal>& terminals) {
  if (std::ranges::find(terminals, text, &tTerminal::name) != terminals.end()) {
    return text;
  }
  const auto isMeant = [name = comparableName(text)](const tTerminal& terminal) {
    return comparableName(terminal.name) == name;
  };
  if (std::ranges::count_if(terminals, isMeant) == 1) {
    return std::ranges::find_if(terminals, isMeant)->name;
  }
  std::vector<std::string_view> names;
  std::ranges::transform(terminals, std::back_inserter(names), &tTerminal::name);
  throw tUsageError("unknown terminal '" + text + "'",
                    "Run 'quenra terminals' to list the terminals.", suggest(text, names));
}

// ---- terminals ----

std::string yesOrNo(bool truth) {
  return truth ? "yes" : "no";
}

std::string busLineOf(const tTerminal& terminal) {
  return terminal.busLine == tTerminal::kNoBusLine
             ? "-"
             : printableText(terminal.busType) + " " + std::to_string(terminal.busLine);
}

void printTerminalTable(const tStreams& streams, const std::vector<tTerminal>& terminals) {
  tTable table;
  table.addRow({"Terminal", "Id", "For", "External", "Owned", "Bus line"});
  for (const tTerminal& terminal : terminals) {
    table.addRow({printableText(terminal.name), std::to_string(terminal.id),
                  terminal.visibility == "public" ? "everybody" : "the controller",
                  yesOrNo(terminal.isExternal), yesOrNo(terminal.isOwned), busLineOf(terminal)});
  }
  table.write(streams.out, tStyle(streams.outTakesStyles));
}

void writeTerminal(tJsonDocument& document, const tTerminal& terminal) {
  document.beginObject();
  document.text("name", terminal.name);
  document.number("id", terminal.id);
  document.text("visibility", terminal.visibility);
  document.truth("external", terminal.isExternal);
  document.truth("owned", terminal.isOwned);
  document.optionalText("busType", terminal.busType);
  document.optionalText("busName", terminal.busName);
  if (terminal.busLine == tTerminal::kNoBusLine) {
    document.null("busLine");
  } else {
    document.number("busLine", terminal.busLine);
  }
  document.truth("alias", terminal.isAlias);
  document.text("canonicalName", terminal.canonicalName);
  document.truth("maskedOut", terminal.isMaskedOut);
  document.endObject();
}

void printTerminals(std::ostream& stream, const std::vector<tTerminal>& terminals,
                    const std::vector<tWarning>& warnings) {
  tJsonDocument document("terminals", tExitCode::done, warnings);
  document.beginArray("terminals");
  for (const tTerminal& terminal : terminals) {
    writeTerminal(document, terminal);
  }
  document.endArray();
  document.writeTo(stream);
}

// ---- route plan ----

struct tPlannedRoute {
  tRoute route;
  std::vector<std::string> path;
};

// Destroys every calculated route again, also if another one fails.
std::vector<tPlannedRoute> planned(tRoutingSession& session, const tRouteRequest& request) {
  std::vector<tPlannedRoute> routes;
  for (const tRoute& route : session.calculate(request)) {
    const tHeldRoute held(session, route.ticket);
    routes.push_back({route, held.path()});
  }
  if (routes.empty()) {
    rejectWithoutRoute(request);
  }
  return routes;
}

void printRouteTable(const tStreams& streams, const std::vector<tPlannedRoute>& routes) {
  tTable table;
  table.addRow({"Path", "Inverted", "Cost"});
  for (const tPlannedRoute& planned : routes) {
    table.addRow({pathText(planned.path), planned.route.inverted ? "yes" : "no",
                  std::to_string(planned.route.cost)});
  }
  table.write(streams.out, tStyle(streams.outTakesStyles));
}

void printRoutes(std::ostream& stream, const tRouteRequest& request,
                 const std::vector<tPlannedRoute>& routes, const std::vector<tWarning>& warnings) {
  tJsonDocument document("route-plan", tExitCode::done, warnings);
  document.text("from", request.from);
  document.text("to", request.to);
  document.beginArray("routes");
  for (const tPlannedRoute& planned : routes) {
    document.beginObject();
    writeRoute(document, planned.route, planned.path);
    document.endObject();
  }
  document.endArray();
  document.writeTo(stream);
}

}  // namespace

tRouteRequest parseRouteRequest(const tArguments& arguments, tRoutingSession& session) {
  const std::vector<tTerminal> terminals = session.terminals();
  return {terminalNamed(arguments.text(nWords::kFrom), terminals),
          terminalNamed(arguments.text(nWords::kTo), terminals), arguments.has(nWords::kInvert)};
}

void rejectWithoutRoute(const tRouteRequest& request) {
  throw tCommandError(tExitCode::notSupported,
                      "there is no route from " + request.from + " to " + request.to +
                          (request.inverted ? " that inverts the signal" : ""),
                      std::nullopt);
}

std::string pathText(const std::vector<std::string>& path) {
  std::string text;
  for (const std::string& terminal : path) {
    text.append(text.empty() ? "" : " -> ").append(terminal.empty() ? "?" : terminal);
  }
  return printableText(text);
}

void writeRoute(tJsonDocument& document, const tRoute& route,
                const std::vector<std::string>& path) {
  document.truth("inverted", route.inverted);
  document.number("cost", route.cost);
  document.beginArray("path");
  for (const std::string& terminal : path) {
    document.textItem(terminal);
  }
  document.endArray();
}

tExitCode runTerminals(const tArguments& /*arguments*/, const tVerbContext& context) {
  tDemotions demotions;
  tRoutingSession session(context.ports.routing, routingDevice(context.ports.library), demotions);
  const std::vector<tTerminal> terminals = session.terminals();
  printWarnings(context.streams.error, session.warnings());
  if (context.json) {
    printTerminals(context.streams.out, terminals, session.warnings());
  } else {
    printTerminalTable(context.streams, terminals);
  }
  return tExitCode::done;
}

tExitCode runRoutePlan(const tArguments& arguments, const tVerbContext& context) {
  tDemotions demotions;
  tRoutingSession session(context.ports.routing, routingDevice(context.ports.library), demotions);
  const tRouteRequest request = parseRouteRequest(arguments, session);
  const std::vector<tPlannedRoute> routes = planned(session, request);
  printWarnings(context.streams.error, session.warnings());
  if (context.json) {
    printRoutes(context.streams.out, request, routes, session.warnings());
  } else {
    printRouteTable(context.streams, routes);
  }
  return tExitCode::done;
}

}  // namespace nCommandLine
