#include "tests/load/balance.h"

#include <chrono>
#include <thread>

namespace nTests {
namespace {

constexpr auto kLongestClosing = std::chrono::seconds(20);
constexpr auto kPause = std::chrono::milliseconds(20);

struct tRow {
  const char* what;
  uint64_t begun;
  uint64_t ended;
};

std::string imbalanceNow(nSimulator::tSimulatedMachine& machine) {
  const tSimulatorCounters now = machine.counters();
  const tRow rows[] = {
      {"files opened and closed", now.filesOpened, now.filesClosed},
      {"registrations begun and ended", now.registrationsBegun, now.registrationsEnded},
      {"deliveries armed and ended", now.deliveriesArmed, now.deliveriesEnded},
      {"notices raised and delivered or dropped", now.noticesRaised,
       now.noticesDelivered + now.noticesDropped},
      {"pending requests begun and ended", now.pendingBegun, now.pendingEnded},
      {"routes calculated and gone", now.routesCalculated, now.routesGone},
      {"reservations begun and ended", now.reservationsBegun,
       now.reservationsEnded + now.reservationsDemoted + now.reservationsReleased},
      {"programmings begun and ended", now.programmingsBegun, now.programmingsEnded},
      {"routes that are there and should be", machine.routes().size(), 0},
  };
  std::string lines;
  for (const tRow& row : rows) {
    if (row.begun != row.ended) {
      lines += std::string(row.what) + ": " + std::to_string(row.begun) + ", " +
               std::to_string(row.ended) + '\n';
    }
  }
  return lines;
}

}  // namespace

std::string imbalanceOf(nSimulator::tSimulatedMachine& machine) {
  const auto deadline = std::chrono::steady_clock::now() + kLongestClosing;
  std::string lines = imbalanceNow(machine);
  while (!lines.empty() && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(kPause);
    lines = imbalanceNow(machine);
  }
  return lines;
}

}  // namespace nTests
