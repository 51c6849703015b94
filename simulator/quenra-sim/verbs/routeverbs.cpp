#include <iostream>

#include "simulator/control/tsimulatedmachine.h"
#include "simulator/quenra-sim/verbs/json.h"
#include "simulator/quenra-sim/verbs/verb.h"

namespace nSimulator {
namespace {

constexpr const char* kStates[] = {"calculated", "reserved", "programmed"};

struct tArguments {
  bool asJson = false;
  uint32_t ticket = 0;
};

void writeRoute(tJsonDocument& document, const tSimulatorRoute& route) {
  document.begin();
  document.member("ticket", route.ticket);
  document.member("process", route.process);
  document.member("session", route.session);
  document.member("source", route.source);
  document.member("destination", route.destination);
  document.member("state", kStates[route.state]);
  document.member("inverts", route.inverts);
  document.end();
}

void printRoute(const tSimulatorRoute& route) {
  std::cout << "ticket " << route.ticket << " process " << route.process << " session "
            << route.session << " terminal " << route.source << " -> " << route.destination
            << (route.inverts != 0 ? " inverted " : " ") << kStates[route.state] << '\n';
}

void list(bool asJson) {
  const std::vector<tSimulatorRoute> routes = tSimulatedMachine().routes();
  if (!asJson) {
    for (const tSimulatorRoute& route : routes) {
      printRoute(route);
    }
    return;
  }
  tJsonDocument document;
  document.begin();
  document.beginList("routes");
  for (const tSimulatorRoute& route : routes) {
    writeRoute(document, route);
  }
  document.endList();
  document.end();
}

void demoteRoute(uint32_t ticket) {
  try {
    tSimulatedMachine().demoteRoute(ticket);
  } catch (const tControlError& error) {
    throwRefusal(error, "no programmed route has ticket " + std::to_string(ticket));
  }
}

}  // namespace

void addRoutes(CLI::App& app, tAction& action) {
  static tArguments arguments;
  CLI::App* const verb =
      app.add_subcommand("routes", "Show the trigger routes of all sessions, oldest first");
  verb->add_flag("--json", arguments.asJson, "Print one JSON document");
  verb->callback([&action] { action = [] { list(arguments.asJson); }; });

  CLI::App* const demote = app.add_subcommand(
      "demote", "Take its line away from a trigger route, and tell the program that made it");
  demote->add_option("ticket", arguments.ticket, "As 'routes' shows it")->required();
  demote->callback([&action] { action = [] { demoteRoute(arguments.ticket); }; });
}

}  // namespace nSimulator
