#include <iomanip>
#include <iostream>

#include "simulator/control/tsimulatedmachine.h"
#include "simulator/quenra-sim/verbs/json.h"
#include "simulator/quenra-sim/verbs/verb.h"

namespace nSimulator {
namespace {

struct tRow {
  const char* name;
  uint64_t tSimulatorCounters::*counter;
};

constexpr tRow kRows[] = {
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
static_assert(sizeof(tSimulatorCounters) == sizeof kRows / sizeof kRows[0] * sizeof(uint64_t));

void show(bool asJson) {
  constexpr int kWidth = 24;
  const tSimulatorCounters counters = tSimulatedMachine().counters();
  if (!asJson) {
    for (const tRow& row : kRows) {
      std::cout << std::left << std::setw(kWidth) << row.name << counters.*row.counter << '\n';
    }
    return;
  }
  tJsonDocument document;
  document.begin();
  for (const tRow& row : kRows) {
    document.member(row.name, counters.*row.counter);
  }
  document.end();
}

}  // namespace

void addCounters(CLI::App& app, tAction& action) {
  static bool asJson = false;
  CLI::App* const verb = app.add_subcommand(
      "counters", "Show what began and what ended, of all programs, since the driver was started");
  verb->add_flag("--json", asJson, "Print one JSON document");
  verb->callback([&action] { action = [] { show(asJson); }; });
}

}  // namespace nSimulator
