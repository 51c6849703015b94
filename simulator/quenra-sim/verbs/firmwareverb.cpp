#include <algorithm>
#include <iostream>

#include "simulator/control/requestlogtext.h"
#include "simulator/control/tsimulatedmachine.h"
#include "simulator/quenra-sim/verbs/hexadecimal.h"
#include "simulator/quenra-sim/verbs/json.h"
#include "simulator/quenra-sim/verbs/verb.h"

namespace nSimulator {
namespace {

struct tArguments {
  bool asJson = false;
  bool clear = false;
};

std::string hashOf(const tSimulatorPayload& payload) {
  return hexadecimal(payload.sha256, sizeof payload.sha256);
}

void showAsJson(const std::vector<tSimulatorPayload>& payloads) {
  tJsonDocument document;
  document.begin();
  document.beginList("payloads");
  for (const tSimulatorPayload& payload : payloads) {
    document.begin();
    document.member("interface", interfaceName(payload.interfaceKind));
    document.member("number", payload.number);
    document.member("process", payload.process);
    document.member("size", payload.size);
    document.member("sha256", hashOf(payload));
    document.member(
        "start", hexadecimal(payload.start, std::min<size_t>(payload.size, sizeof payload.start)));
    document.end();
  }
  document.endList();
  document.end();
}

void show(const tArguments& arguments) {
  tSimulatedMachine machine;
  const std::vector<tSimulatorPayload> payloads = machine.firmware();
  if (arguments.asJson) {
    showAsJson(payloads);
  } else if (payloads.empty()) {
    std::cout << "no firmware was received\n";
  } else {
    for (const tSimulatorPayload& payload : payloads) {
      std::cout << interfaceName(payload.interfaceKind) << ' ' << payload.number << ": "
                << payload.size << " bytes from process " << payload.process << ", sha256 "
                << hashOf(payload) << '\n';
    }
  }
  if (arguments.clear) {
    machine.clearFirmware();
  }
}

}  // namespace

void addFirmware(CLI::App& app, tAction& action) {
  static tArguments arguments;
  CLI::App* const verb = app.add_subcommand(
      "firmware", "Show the firmware payloads that the interfaces have received; the latest " +
                      std::to_string(SIMULATOR_PAYLOAD_CAPACITY) + " are kept");
  verb->add_flag("--json", arguments.asJson, "Print one JSON document");
  verb->add_flag("--clear", arguments.clear, "Forget them afterwards");
  verb->callback([&action] { action = [] { show(arguments); }; });
}

}  // namespace nSimulator
