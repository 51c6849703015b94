#include "tests/load/mischief.h"

#include <chrono>

namespace nTests {
namespace {

using std::chrono::milliseconds;

constexpr uint32_t kLongestPause = 4;  // milliseconds
constexpr uint32_t kErrors[] = {5, 8, 21, 31, 121, 1450};
constexpr int32_t kCodes[] = {-1, -26934, -52000, -52005, -2147483647};
constexpr tSimulatorInterface kInterfaces[] = {
    kSimulatorInterfaceController, kSimulatorInterfaceMarten, kSimulatorInterfaceDevicePath};
constexpr tSimulatorAction kActions[] = {kSimulatorActionAnswerCode, kSimulatorActionFail,
                                         kSimulatorActionReply, kSimulatorActionTruncate,
                                         kSimulatorActionAddCode};
constexpr uint32_t kWarning = 7;

}  // namespace

tMischief::tMischief(uint64_t seed)
    : random_(seed), thread_([this](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
          try {
            doSome();
          } catch (const nSimulator::tControlError&) {
            // The request or route that was chosen no longer exists.
          }
          std::this_thread::sleep_for(milliseconds(random_.below(kLongestPause)));
        }
      }) {}

tMischief::~tMischief() {
  thread_ = {};
  machine_.clearScripts();
  machine_.setAcceptance(kSimulatorAcceptAtOnce);
  machine_.acceptPending();
}

void tMischief::doSome() {
  switch (random_.below(8)) {
    case 0:
      return holdRequestsBack();
    case 1:
      return failAPendingRequest();
    case 2:
      return demoteARoute();
    case 3:
      return tellALie();
    case 4:
      return machine_.clearScripts();
    default:
      return scriptAnAnswer();
  }
}

void tMischief::scriptAnAnswer() {
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

void tMischief::holdRequestsBack() {
  machine_.setAcceptance(random_.oneIn(4) ? kSimulatorAcceptNever : kSimulatorAcceptLater);
  std::this_thread::sleep_for(milliseconds(random_.below(kLongestPause)));
  machine_.setAcceptance(kSimulatorAcceptAtOnce);
  machine_.acceptPending();
}

void tMischief::failAPendingRequest() {
  const auto pending = machine_.pending();
  if (!pending.empty()) {
    machine_.completePending(pending[random_.below(static_cast<uint32_t>(pending.size()))].handle,
                             random_.oneOf(kErrors));
  }
}

void tMischief::demoteARoute() {
  const auto routes = machine_.routes();
  if (!routes.empty()) {
    machine_.demoteRoute(routes[random_.below(static_cast<uint32_t>(routes.size()))].ticket);
  }
}

void tMischief::tellALie() {
  tSimulatorNotice notice{};
  notice.mask = 0xFFFFFFFF;
  notice.payloadSize = random_.oneIn(8) ? 0xFFFFFFFF : random_.below(40);
  notice.notification = random_.oneIn(2) ? random_.next() : 0;
  machine_.notify(notice);
}

}  // namespace nTests
