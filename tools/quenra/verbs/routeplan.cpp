#include "tools/quenra/verbs/routeplan.h"

#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/output/table.h"
#include "tools/quenra/routing/routeoutput.h"
#include "tools/quenra/routing/routingdevice.h"
#include "tools/quenra/routing/theldroute.h"
#include "tools/quenra/verbs/routearguments.h"

namespace nCommandLine {
namespace {

struct tPlannedRoute {
  tRoute route;
  std::vector<std::string> path;
};

// Destroys every calculated route again, also if another one fails.
std::vector<tPlannedRoute> planned(tRoutingSession& session, const tWantedRoute& wanted) {
  std::vector<tPlannedRoute> routes;
  for (const tRoute& route : session.calculate(wanted)) {
    const tHeldRoute held(session, route.ticket);
    routes.push_back({route, held.path()});
  }
  if (routes.empty()) {
    refuseRoute(wanted);
  }
  return routes;
}

void printTable(const tStreams& streams, const std::vector<tPlannedRoute>& routes) {
  tTable table;
  table.addRow({"Path", "Inverted", "Cost"});
  for (const tPlannedRoute& planned : routes) {
    table.addRow({pathText(planned.path), planned.route.inverted ? "yes" : "no",
                  std::to_string(planned.route.cost)});
  }
  table.write(streams.out, tStyle(streams.outTakesStyles));
}

void printDocument(std::ostream& stream, const tWantedRoute& wanted,
                   const std::vector<tPlannedRoute>& routes,
                   const std::vector<tWarning>& warnings) {
  tJsonDocument document("route-plan", tExitCode::done, warnings);
  document.text("from", wanted.from);
  document.text("to", wanted.to);
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

tExitCode runRoutePlan(const tArguments& arguments, const tVerbContext& context) {
  tDemotions demotions;
  tRoutingSession session(context.ports.routing, routingDevice(context.ports.library), demotions);
  const tWantedRoute wanted = wantedRoute(arguments, session);
  const std::vector<tPlannedRoute> routes = planned(session, wanted);
  printWarnings(context.streams.error, session.warnings());
  if (context.json) {
    printDocument(context.streams.out, wanted, routes, session.warnings());
  } else {
    printTable(context.streams, routes);
  }
  return tExitCode::done;
}

}  // namespace nCommandLine
