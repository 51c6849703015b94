// pending, routes and demote: requests and routes that programs hold.
#include <iostream>
#include <string>
#include <vector>

#include "simulator/control/tsimulatedmachine.h"
#include "simulator/quenra-sim/verbs/verbs.h"

namespace nSimulator {
namespace {

// Rethrows the error of a request, with `message` if the machine did not find its object.
[[noreturn]] void rethrowRejection(const tControlError& error, const std::string& message) {
  constexpr uint32_t kErrorNotFound = 1168;
  throw tControlError(error.windowsError() == kErrorNotFound ? message : error.what(),
                      error.windowsError());
}

struct tPendingArguments {
  bool asJson = false;
  uint32_t acceptance = kSimulatorAcceptAtOnce;
  uint64_t handle = 0;
  uint32_t windowsError = 0;
};

void writePending(tJsonDocument& document, const tSimulatorPendingRequest& record) {
  document.begin();
  document.member("handle", record.handle);
  document.member("process", record.process);
  document.member("file", record.file);
  document.member("interface", interfaceName(record.interfaceKind));
  document.member("a", uint32_t{record.a});
  document.member("b", record.b);
  document.member("c", uint32_t{record.c});
  document.end();
}

void printPending(const tSimulatorPendingRequest& record) {
  std::cout << (record.handle == 0 ? "waiting" : "handle " + std::to_string(record.handle))
            << " process " << record.process << ' ' << interfaceName(record.interfaceKind) << '#'
            << record.file << " a=" << record.a << " b=" << record.b << " c=" << uint32_t{record.c}
            << '\n';
}

void listPending(bool asJson) {
  const std::vector<tSimulatorPendingRequest> records = tSimulatedMachine().pending();
  if (!asJson) {
    for (const tSimulatorPendingRequest& record : records) {
      printPending(record);
    }
    return;
  }
  tJsonDocument document;
  document.begin();
  document.beginList("pending");
  for (const tSimulatorPendingRequest& record : records) {
    writePending(document, record);
  }
  document.endList();
  document.end();
}

void completeRequests(const tPendingArguments& arguments) {
  try {
    tSimulatedMachine().completePending(arguments.handle, arguments.windowsError);
  } catch (const tControlError& error) {
    rethrowRejection(error, arguments.handle == 0 ? "no request waits for acceptance"
                                                  : "no pending request has handle " +
                                                        std::to_string(arguments.handle));
  }
}

void addComplete(CLI::App* verb, tPendingArguments& arguments, tAction& action) {
  CLI::App* const complete =
      verb->add_subcommand("complete", "Complete requests from the driver's side");
  complete
      ->add_option("handle", arguments.handle,
                   "As 'pending list' shows it; 0: all requests that wait for acceptance")
      ->required();
  complete
      ->add_option("--windows-error", arguments.windowsError,
                   "Windows error of the completion; 0: success")
      ->check(between(0, 65535))
      ->capture_default_str();
  complete->callback(
      [&action, &arguments] { action = [&arguments] { completeRequests(arguments); }; });
}

constexpr const char* kRouteStates[] = {"calculated", "reserved", "programmed"};

void writeRoute(tJsonDocument& document, const tSimulatorRoute& route) {
  document.begin();
  document.member("ticket", route.ticket);
  document.member("process", route.process);
  document.member("session", route.session);
  document.member("source", route.source);
  document.member("destination", route.destination);
  document.member("state", kRouteStates[route.state]);
  document.member("inverts", route.inverts);
  document.end();
}

void printRoute(const tSimulatorRoute& route) {
  std::cout << "ticket " << route.ticket << " process " << route.process << " session "
            << route.session << " terminal " << route.source << " -> " << route.destination
            << (route.inverts != 0 ? " inverted " : " ") << kRouteStates[route.state] << '\n';
}

void listRoutes(bool asJson) {
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
    rethrowRejection(error, "no programmed route has ticket " + std::to_string(ticket));
  }
}

}  // namespace

void addPending(CLI::App& app, tAction& action) {
  static tPendingArguments arguments;
  CLI::App* const verb = app.add_subcommand("pending", "Show and control pending requests");
  verb->require_subcommand(1);
  CLI::App* const listVerb =
      verb->add_subcommand("list", "Show the pending requests, oldest first");
  listVerb->add_flag("--json", arguments.asJson, "Print one JSON document");
  listVerb->callback([&action] { action = [] { listPending(arguments.asJson); }; });

  CLI::App* const acceptance =
      verb->add_subcommand("acceptance", "Set when later requests are accepted");
  acceptance
      ->add_option("when", arguments.acceptance,
                   "at-once; later: with 'pending accept'; never: they complete without a handle")
      ->required()
      ->transform(namesOf("a time of acceptance", {{"at-once", kSimulatorAcceptAtOnce},
                                                   {"later", kSimulatorAcceptLater},
                                                   {"never", kSimulatorAcceptNever}}));
  acceptance->callback([&action] {
    action = [] {
      tSimulatedMachine().setAcceptance(static_cast<tSimulatorAcceptance>(arguments.acceptance));
    };
  });
  verb->add_subcommand("accept", "Accept the requests that wait for acceptance")
      ->callback([&action] { action = [] { tSimulatedMachine().acceptPending(); }; });
  addComplete(verb, arguments, action);
}

void addRoutes(CLI::App& app, tAction& action) {
  static bool asJson = false;
  CLI::App* const verb =
      app.add_subcommand("routes", "Show the trigger routes of all programs, oldest first");
  verb->add_flag("--json", asJson, "Print one JSON document");
  verb->callback([&action] { action = [] { listRoutes(asJson); }; });
}

void addDemote(CLI::App& app, tAction& action) {
  static uint32_t ticket = 0;
  CLI::App* const verb =
      app.add_subcommand("demote", "Demote a trigger route and notify its program");
  verb->add_option("ticket", ticket, "A ticket from 'routes'")->required();
  verb->callback([&action] { action = [] { demoteRoute(ticket); }; });
}

}  // namespace nSimulator
