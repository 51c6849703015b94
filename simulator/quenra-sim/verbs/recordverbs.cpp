// log, counters and firmware: records of the driver.
#include <algorithm>
#include <iomanip>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "simulator/control/tsimulatedmachine.h"
#include "simulator/quenra-sim/verbs/verbs.h"

namespace nSimulator {
namespace {

struct tLogArguments {
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

void showLog(const tLogArguments& arguments) {
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

struct tCounterRow {
  const char* name;
  uint64_t tSimulatorCounters::*counter;
};

constexpr tCounterRow kCounterRows[] = {
    {"filesOpened", &tSimulatorCounters::filesOpened},
    {"filesClosed", &tSimulatorCounters::filesClosed},
    {"registrationsBegun", &tSimulatorCounters::registrationsBegun},
    {"registrationsEnded", &tSimulatorCounters::registrationsEnded},
    {"deliveriesArmed", &tSimulatorCounters::deliveriesArmed},
    {"deliveriesEnded", &tSimulatorCounters::deliveriesEnded},
    {"noticesRaised", &tSimulatorCounters::noticesRaised},
    {"noticesDelivered", &tSimulatorCounters::noticesDelivered},
    {"noticesDropped", &tSimulatorCounters::noticesDropped},
    {"pendingBegun", &tSimulatorCounters::pendingBegun},
    {"pendingEnded", &tSimulatorCounters::pendingEnded},
    {"routesCalculated", &tSimulatorCounters::routesCalculated},
    {"routesGone", &tSimulatorCounters::routesGone},
    {"reservationsBegun", &tSimulatorCounters::reservationsBegun},
    {"reservationsEnded", &tSimulatorCounters::reservationsEnded},
    {"reservationsDemoted", &tSimulatorCounters::reservationsDemoted},
    {"reservationsReleased", &tSimulatorCounters::reservationsReleased},
    {"programmingsBegun", &tSimulatorCounters::programmingsBegun},
    {"programmingsEnded", &tSimulatorCounters::programmingsEnded},
};
static_assert(sizeof(tSimulatorCounters) ==
              sizeof kCounterRows / sizeof kCounterRows[0] * sizeof(uint64_t));

void showCounters(bool asJson) {
  constexpr int kWidth = 24;
  const tSimulatorCounters counters = tSimulatedMachine().counters();
  if (!asJson) {
    for (const tCounterRow& row : kCounterRows) {
      std::cout << std::left << std::setw(kWidth) << row.name << counters.*row.counter << '\n';
    }
    return;
  }
  tJsonDocument document;
  document.begin();
  for (const tCounterRow& row : kCounterRows) {
    document.member(row.name, counters.*row.counter);
  }
  document.end();
}

struct tFirmwareArguments {
  bool asJson = false;
  bool clear = false;
};

std::string hashOf(const tSimulatorPayload& payload) {
  return hexadecimal(payload.sha256, sizeof payload.sha256);
}

void showFirmwareAsJson(const std::vector<tSimulatorPayload>& payloads) {
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

void showFirmware(const tFirmwareArguments& arguments) {
  tSimulatedMachine machine;
  const std::vector<tSimulatorPayload> payloads = machine.firmware();
  if (arguments.asJson) {
    showFirmwareAsJson(payloads);
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

void runLog(const tArguments& arguments) {
  showLog({number(arguments, nWords::kFrom, 1, UINT64_MAX), arguments.has(nWords::kJson),
           arguments.has(nWords::kClear)});
}

void runCounters(const tArguments& arguments) {
  showCounters(arguments.has(nWords::kJson));
}

void runFirmware(const tArguments& arguments) {
  showFirmware({arguments.has(nWords::kJson), arguments.has(nWords::kClear)});
}

}  // namespace nSimulator
