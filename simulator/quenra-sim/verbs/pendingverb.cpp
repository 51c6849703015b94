#include <iostream>

#include "simulator/control/requestlogtext.h"
#include "simulator/control/tsimulatedmachine.h"
#include "simulator/quenra-sim/verbs/json.h"
#include "simulator/quenra-sim/verbs/verb.h"

namespace nSimulator {
namespace {

struct tArguments {
  bool asJson = false;
  uint32_t acceptance = kSimulatorAcceptAtOnce;
  uint64_t handle = 0;
  uint32_t windowsError = 0;
};

void writeRecord(tJsonDocument& document, const tSimulatorPendingRequest& record) {
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

void printRecord(const tSimulatorPendingRequest& record) {
  std::cout << (record.handle == 0 ? "waiting" : "handle " + std::to_string(record.handle))
            << " process " << record.process << ' ' << interfaceName(record.interfaceKind) << '#'
            << record.file << " a=" << record.a << " b=" << record.b << " c=" << uint32_t{record.c}
            << '\n';
}

void list(bool asJson) {
  const std::vector<tSimulatorPendingRequest> records = tSimulatedMachine().pending();
  if (!asJson) {
    for (const tSimulatorPendingRequest& record : records) {
      printRecord(record);
    }
    return;
  }
  tJsonDocument document;
  document.begin();
  document.beginList("pending");
  for (const tSimulatorPendingRequest& record : records) {
    writeRecord(document, record);
  }
  document.endList();
  document.end();
}

void completeRequests(const tArguments& arguments) {
  try {
    tSimulatedMachine().completePending(arguments.handle, arguments.windowsError);
  } catch (const tControlError& error) {
    throwRefusal(error, arguments.handle == 0
                            ? "no request waits to be accepted"
                            : "no pending request has handle " + std::to_string(arguments.handle));
  }
}

void addComplete(CLI::App* verb, tArguments& arguments, tAction& action) {
  CLI::App* const complete = verb->add_subcommand(
      "complete", "Complete requests from the machine's side, before their caller ends them");
  complete
      ->add_option("handle", arguments.handle,
                   "As 'pending list' shows it; 0: all that wait to be accepted")
      ->required();
  complete
      ->add_option("--windows-error", arguments.windowsError,
                   "They fail with this Windows error; 0: they succeed")
      ->check(between(0, 65535))
      ->capture_default_str();
  complete->callback(
      [&action, &arguments] { action = [&arguments] { completeRequests(arguments); }; });
}

}  // namespace

void addPending(CLI::App& app, tAction& action) {
  static tArguments arguments;
  CLI::App* const verb = app.add_subcommand(
      "pending", "Show and steer the requests that stay pending until they are ended");
  verb->require_subcommand(1);
  CLI::App* const listVerb = verb->add_subcommand("list", "Show what is pending, oldest first");
  listVerb->add_flag("--json", arguments.asJson, "Print one JSON document");
  listVerb->callback([&action] { action = [] { list(arguments.asJson); }; });

  CLI::App* const acceptance =
      verb->add_subcommand("acceptance", "Say how requests are accepted from now on");
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
  verb->add_subcommand("accept", "Accept the requests that are waiting")->callback([&action] {
    action = [] { tSimulatedMachine().acceptPending(); };
  });
  addComplete(verb, arguments, action);
}

}  // namespace nSimulator
