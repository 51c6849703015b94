#include "tests/load/drivercontrol.h"

#include <chrono>
#include <thread>

#include "quenra_status.h"

namespace nTests {
namespace {

using std::chrono::milliseconds;

constexpr uint32_t kMaxPause = 4;  // milliseconds
// Access denied, out of memory, not ready, general failure, timeout, out of resources.
constexpr uint32_t kErrors[] = {5, 8, 21, 31, 121, 1450};
constexpr int32_t kCodes[] = {-1, QUENRA_STATUS_NOT_SUPPORTED, QUENRA_STATUS_MEMORY_FULL,
                              QUENRA_STATUS_INVALID_PARAMETER, -2147483647};
constexpr tSimulatorInterface kInterfaces[] = {
    kSimulatorInterfaceController, kSimulatorInterfaceMarten, kSimulatorInterfaceDevicePath};
constexpr tSimulatorAction kActions[] = {kSimulatorActionAnswerCode, kSimulatorActionFail,
                                         kSimulatorActionReply, kSimulatorActionTruncate,
                                         kSimulatorActionAddCode};
constexpr uint32_t kWarning = 7;

// The time in which the driver closes the files of killed clients.
constexpr auto kCloseTimeout = std::chrono::seconds(20);
constexpr auto kLeakPollInterval = milliseconds(20);

// A pair of counts that are equal when no client exists.
struct tPair {
  const char* counts;
  uint64_t begun;
  uint64_t ended;
};

std::string currentLeaks(nSimulator::tSimulatedMachine& machine) {
  const tSimulatorCounters now = machine.counters();
  const tPair pairs[] = {
      {"files opened and closed", now.filesOpened, now.filesClosed},
      {"registrations begun and ended", now.registrationsBegun, now.registrationsEnded},
      {"deliveries armed and ended", now.deliveriesArmed, now.deliveriesEnded},
      {"notices raised and delivered or dropped", now.noticesRaised,
       now.noticesDelivered + now.noticesDropped},
      {"pending requests begun and ended", now.pendingBegun, now.pendingEnded},
      {"routes calculated and destroyed", now.routesCalculated, now.routesGone},
      {"reservations begun and ended", now.reservationsBegun,
       now.reservationsEnded + now.reservationsDemoted + now.reservationsReleased},
      {"programmings begun and ended", now.programmingsBegun, now.programmingsEnded},
      {"routes that exist and should exist", machine.routes().size(), 0},
  };
  std::string lines;
  for (const tPair& pair : pairs) {
    if (pair.begun != pair.ended) {
      lines += std::string(pair.counts) + ": " + std::to_string(pair.begun) + ", " +
               std::to_string(pair.ended) + '\n';
    }
  }
  return lines;
}

}  // namespace

tFaultInjector::tFaultInjector(uint64_t seed)
    : random_(seed), thread_([this](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
          try {
            injectOne();
          } catch (const nSimulator::tControlError&) {
            // The chosen request no longer exists.
          }
          std::this_thread::sleep_for(milliseconds(random_.below(kMaxPause)));
        }
      }) {}

tFaultInjector::~tFaultInjector() {
  thread_ = {};
  machine_.clearScripts();
  machine_.setAcceptance(kSimulatorAcceptAtOnce);
  machine_.acceptPending();
}

void tFaultInjector::injectOne() {
  switch (random_.below(8)) {
    case 0:
      return delayRequests();
    case 1:
      return failPendingRequest();
    case 2:
      return demoteRandomRoute(machine_, random_);
    case 3:
      return sendInvalidNotice();
    case 4:
      return machine_.clearScripts();
    default:
      return scriptReply();
  }
}

void tFaultInjector::scriptReply() {
  tSimulatorScript script{};
  script.interfaceKind = random_.oneOf(kInterfaces);
  script.skip = random_.below(6);
  script.times = 1 + random_.below(2);
  script.action = random_.oneOf(kActions);
  script.windowsError = random_.oneOf(kErrors);
  script.driverStatus =
      script.action == kSimulatorActionAddCode ? int32_t{kWarning} : random_.oneOf(kCodes);
  script.replySize = random_.below(sizeof script.reply);
  for (uint8_t& byte : script.reply) {
    byte = random_.oneIn(3) ? uint8_t{0xFF} : static_cast<uint8_t>(random_.below(256));
  }
  // Limits the reported sizes of table and text to 64 KiB: sanitizers double the cost of memory.
  script.reply[2] = script.reply[3] = script.reply[6] = script.reply[7] = 0;
  machine_.addScript(script);
}

void tFaultInjector::delayRequests() {
  machine_.setAcceptance(random_.oneIn(4) ? kSimulatorAcceptNever : kSimulatorAcceptLater);
  std::this_thread::sleep_for(milliseconds(random_.below(kMaxPause)));
  machine_.setAcceptance(kSimulatorAcceptAtOnce);
  machine_.acceptPending();
}

void tFaultInjector::failPendingRequest() {
  const auto pending = machine_.pending();
  if (!pending.empty()) {
    machine_.completePending(pending[random_.below(static_cast<uint32_t>(pending.size()))].handle,
                             random_.oneOf(kErrors));
  }
}

void tFaultInjector::sendInvalidNotice() {
  tSimulatorNotice notice{};
  notice.mask = 0xFFFFFFFF;
  notice.payloadSize = random_.oneIn(8) ? 0xFFFFFFFF : random_.below(40);
  notice.notification = random_.oneIn(2) ? random_.next() : 0;
  machine_.notify(notice);
}

void demoteRandomRoute(nSimulator::tSimulatedMachine& machine, tRandom& random) {
  const auto routes = machine.routes();
  if (routes.empty()) {
    return;
  }
  try {
    machine.demoteRoute(routes[random.below(static_cast<uint32_t>(routes.size()))].ticket);
  } catch (const nSimulator::tControlError&) {
    // The route holds no line or no longer exists.
  }
}

std::string driverLeaks(nSimulator::tSimulatedMachine& machine) {
  const auto deadline = std::chrono::steady_clock::now() + kCloseTimeout;
  std::string lines = currentLeaks(machine);
  while (!lines.empty() && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(kLeakPollInterval);
    lines = currentLeaks(machine);
  }
  return lines;
}

}  // namespace nTests
