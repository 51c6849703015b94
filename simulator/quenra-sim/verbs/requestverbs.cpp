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

void completeRequests(uint64_t handle, uint32_t windowsError) {
  try {
    tSimulatedMachine().completePending(handle, windowsError);
  } catch (const tControlError& error) {
    rethrowRejection(error, handle == 0
                                ? "no request waits for acceptance"
                                : "no pending request has handle " + std::to_string(handle));
  }
}

std::vector<tOfferedWord> acceptances() {
  return {{"at-once", "Requests are accepted immediately"},
          {"later", "Requests are accepted with 'pending accept'"},
          {"never", "Requests complete without a handle"}};
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

constinit const tWordSet kAcceptanceWords{"acceptances", acceptances};

void runPendingList(const tArguments& arguments) {
  listPending(arguments.has(nWords::kJson));
}

void runPendingAcceptance(const tArguments& arguments) {
  const size_t index =
      indexOf("time of acceptance", arguments.text(nWords::kWhen), kAcceptanceWords);
  tSimulatedMachine().setAcceptance(static_cast<tSimulatorAcceptance>(index));
}

void runPendingAccept(const tArguments& /*arguments*/) {
  tSimulatedMachine().acceptPending();
}

void runPendingComplete(const tArguments& arguments) {
  const uint64_t handle = number(arguments, nWords::kHandle, 0, UINT64_MAX);
  const uint64_t windowsError = number(arguments, nWords::kWindowsError, 0, UINT16_MAX);
  completeRequests(handle, static_cast<uint32_t>(windowsError));
}

void runRoutes(const tArguments& arguments) {
  listRoutes(arguments.has(nWords::kJson));
}

void runDemote(const tArguments& arguments) {
  demoteRoute(static_cast<uint32_t>(number(arguments, nWords::kTicket)));
}

}  // namespace nSimulator
