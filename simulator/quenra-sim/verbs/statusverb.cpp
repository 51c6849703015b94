#include <iostream>

#include "simulator/control/tsimulatedmachine.h"
#include "simulator/quenra-sim/installation/driverstoretool.h"
#include "simulator/quenra-sim/verbs/json.h"
#include "simulator/quenra-sim/verbs/verb.h"
#include "simulator/scenario/driverstore.h"
#include "simulator/scenario/encryption.h"

namespace nSimulator {
namespace {

void show(bool asJson) {
  tSimulatedMachine machine;
  const tSimulatorPresence presence = machine.presence();
  const size_t tableSize = machine.table().size();
  if (asJson) {
    tJsonDocument document;
    document.begin();
    document.member("controllers", presence.controllers);
    document.member("martens", presence.martens);
    document.member("devicePaths", presence.devicePaths);
    document.member("tableSize", tableSize);
    document.end();
  } else {
    std::cout << "controller interfaces   " << presence.controllers << '\n'
              << "Marten interfaces       " << presence.martens << '\n'
              << "device path interfaces  " << presence.devicePaths << '\n'
              << "SMBIOS table            " << tableSize << " bytes\n";
  }
}

void reset() {
  tSimulatedMachine().reset();
  setEncryption({});
  setDriverStoreBehaviour({});
  clearDriverStoreRuns();
  putDriverStoreTool(tDriverStoreTool::working);
}

}  // namespace

void addStatus(CLI::App& app, tAction& action) {
  static bool asJson = false;
  CLI::App* const verb = app.add_subcommand("status", "Show what the machine has present");
  verb->add_flag("--json", asJson, "Print one JSON document");
  verb->callback([&action] { action = [] { show(asJson); }; });
}

void addReset(CLI::App& app, tAction& action) {
  app.add_subcommand("reset", "Back to the default machine, with nothing scripted and an empty log")
      ->callback([&action] { action = reset; });
}

}  // namespace nSimulator
