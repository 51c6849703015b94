#include <algorithm>
#include <iostream>
#include <iterator>

#include "simulator/control/requestlogtext.h"
#include "simulator/control/tsimulatedmachine.h"
#include "simulator/quenra-sim/verbs/hexadecimal.h"
#include "simulator/quenra-sim/verbs/json.h"
#include "simulator/quenra-sim/verbs/verb.h"

namespace nSimulator {
namespace {

struct tArguments {
  uint64_t from = 1;
  bool asJson = false;
  bool clear = false;
};

void writeEntry(tJsonDocument& document, const tSimulatorLogEntry& entry) {
  constexpr const char* kEvents[] = {"unknown", "open",     "close",
                                     "request", "accepted", "completed"};
  document.begin();
  document.member("sequence", entry.sequence);
  document.member("process", entry.process);
  document.member("file", entry.file);
  document.member("interface", interfaceName(entry.interfaceKind));
  document.member("event", kEvents[entry.event < std::size(kEvents) ? entry.event : 0]);
  if (entry.event >= kSimulatorEventRequest) {
    document.member("request", requestName(entry.requestCode));
    document.member("windowsError", entry.windowsError);
    document.member(
        "input", hexadecimal(entry.input, std::min<size_t>(entry.inputSize, sizeof entry.input)));
    document.member("output", hexadecimal(entry.output,
                                          std::min<size_t>(entry.outputSize, sizeof entry.output)));
  }
  document.end();
}

void show(const tArguments& arguments) {
  tSimulatedMachine machine;
  const std::vector<tSimulatorLogEntry> entries = machine.log(arguments.from);
  if (arguments.asJson) {
    tJsonDocument document;
    document.begin();
    document.beginList("entries");
    for (const tSimulatorLogEntry& entry : entries) {
      writeEntry(document, entry);
    }
    document.endList();
    document.end();
  } else {
    for (const tSimulatorLogEntry& entry : entries) {
      std::cout << requestLogLine(entry) << '\n';
    }
  }
  if (arguments.clear) {
    machine.clearLog();
  }
}

}  // namespace

void addLog(CLI::App& app, tAction& action) {
  static tArguments arguments;
  CLI::App* const verb =
      app.add_subcommand("log", "Show what the driver has received and answered; the latest " +
                                    std::to_string(SIMULATOR_LOG_CAPACITY) + " entries are kept");
  verb->add_option("--from", arguments.from, "Begin with this sequence number")
      ->capture_default_str();
  verb->add_flag("--json", arguments.asJson, "Print one JSON document, the bytes in hexadecimal");
  verb->add_flag("--clear", arguments.clear, "Empty the log afterwards");
  verb->callback([&action] { action = [] { show(arguments); }; });
}

}  // namespace nSimulator
