#include "tests/load/routeclient.h"

#include <array>
#include <chrono>
#include <cstdlib>
#include <string_view>
#include <thread>

#include "quenra.h"

namespace nTests {
namespace {

constexpr const char* kTerminals[] = {"TRIG_SMB",  "PXI_Trig0", "PXI_Trig1",
                                      "PXI_Trig2", "PXI_Trig3", "PXI_Trig4",
                                      "PXI_Trig5", "PXI_Trig6", "PXI_Trig7"};
constexpr int32_t kDemoted = 101;
constexpr auto kNoticeTimeout = std::chrono::seconds(20);
constexpr auto kPause = std::chrono::milliseconds(1);

}  // namespace

std::string routingDevicePath() {
  std::array<char, 256> path{};
  uint64_t size = path.size();
  const int32_t code =
      QUENRA_getAttributeUTF8(QUENRA_HANDLE, QUENRA_ATTRIBUTE_DEVICE_PATH, path.data(), &size);
  require(code == 0, "reading the device path returns " + std::to_string(code));
  return path.data();
}

tRouteClient::tRouteClient(const tRouteWork& work) : work_(work) {
  createSession();
}

tRouteClient::~tRouteClient() {
  zoroco_ra_quenra_destroySession(session_);
  zoerr_Status_release(&status_);
  std::free(output_);
}

void tRouteClient::receiveDemotion(void* context, int32_t reason, zoerr_Status* status,
                                   void* notification) {
  auto& self = *static_cast<tRouteClient*>(context);
  ++self.inside_;
  if (self.isEnded_ || reason != kDemoted || status == nullptr || status->code != 0 ||
      notification == nullptr) {
    self.wasCallbackInvalid_ = true;
  }
  ++self.delivered_;
  ++self.work_.tally->delivered;
  --self.inside_;
}

char* tRouteClient::reallocate(char* current, size_t required, const char*, size_t) {
  return static_cast<char*>(std::realloc(current, required));
}

bool tRouteClient::succeeded(const char* what, int32_t expected) {
  const int32_t code = status_.code;
  const std::string description = status_.description == nullptr ? "" : status_.description;
  zoerr_Status_release(&status_);
  status_ = zoerr_Status_initial();
  require(code >= 0 || code == expected || work_.faults == tFaults::anywhere,
          std::string(what) + " returns " + std::to_string(code) + " " + description);
  work_.tally->failures += code < 0 && code != expected ? 1 : 0;
  return code >= 0;
}

void tRouteClient::createSession() {
  work_.progress->enter(tStep::createSession);
  session_ = zoroco_ra_quenra_createSessionWithDemotionFunc(work_.devicePath.c_str(), &reallocate,
                                                            &receiveDemotion, this, &status_);
  const bool isCreated = session_ != nullptr;
  require(succeeded("creating a session") == isCreated, "a session is returned on success only");
  work_.tally->sessions += isCreated ? 1 : 0;
}

void tRouteClient::end() {
  work_.progress->enter(tStep::destroySession);
  zoroco_ra_quenra_destroySession(session_);
  session_ = nullptr;
  require(inside_ == 0, "a callback still runs after its session was destroyed");
  isEnded_ = true;
  require(!wasCallbackInvalid_, "a callback received invalid arguments");
}

uint32_t tRouteClient::calculate() {
  from_ = work_.random->oneOf(kTerminals);
  do {
    to_ = work_.random->oneOf(kTerminals);
  } while (to_ == from_);
  const std::string seeds = R"([{"terminal":")" + from_ + R"(","cost":1,"constraints":{}}])";
  const std::string destinations = R"([")" + to_ + R"("])";
  work_.progress->enter(tStep::calculate);
  zoroco_ra_quenra_calculateRoute(session_, seeds.c_str(), destinations.c_str(), "{}", &output_,
                                  &status_);
  constexpr std::string_view kStart = R"([{"ticket":)";
  const bool done = succeeded("calculating a route");
  const std::string answer = done && output_ != nullptr ? output_ : "";
  if (answer.substr(0, kStart.size()) != kStart) {
    require(work_.faults == tFaults::anywhere, "expected a route, not " + answer);
    return 0;
  }
  return static_cast<uint32_t>(std::stoul(answer.substr(kStart.size())));
}

bool tRouteClient::reserve(uint32_t ticket) {
  work_.progress->enter(tStep::reserve);
  zoroco_ra_quenra_reserveRoute(session_, ticket, &output_, &status_);
  const bool isConflict = status_.code == QUENRA_STATUS_ROUTE_CONFLICT;
  const bool done = succeeded("reserving a route", QUENRA_STATUS_ROUTE_CONFLICT);
  if (isConflict) {
    const std::string holders = output_;
    require(holders.rfind(R"([{"sessionId":)", 0) == 0 || work_.faults == tFaults::anywhere,
            "a conflict has holders: " + holders);
    ++work_.tally->conflicts;
  }
  return done;
}

// False if the route was demoted meanwhile.
bool tRouteClient::program(uint32_t ticket) {
  work_.progress->enter(tStep::program);
  zoroco_ra_quenra_programRoute(session_, ticket, &status_);
  return succeeded("programming a route", SIMULATOR_STATUS_WRONG_ORDER);
}

void tRouteClient::checkPath(uint32_t ticket) {
  work_.progress->enter(tStep::path);
  zoroco_ra_quenra_getRouteTerminalPath(session_, ticket, &output_, &status_);
  if (succeeded("reading a path") && work_.faults == tFaults::none) {
    const std::string expected = R"([")" + from_ + R"(",")" + to_ + R"("])";
    require(output_ == expected, "the path is " + expected + ", not " + output_);
  }
}

// The route is demoted on return, possibly by another thread.
void tRouteClient::demote(uint32_t ticket) {
  work_.progress->enter(tStep::demote);
  try {
    work_.machine->demoteRoute(ticket);
  } catch (const nSimulator::tControlError&) {
    // The route no longer holds a line.
  }
}

void tRouteClient::awaitDemotion(uint64_t deliveredBefore) {
  if (work_.faults == tFaults::anywhere) {
    return;
  }
  work_.progress->enter(tStep::awaitDemotion);
  ++work_.tally->awaited;
  const auto deadline = std::chrono::steady_clock::now() + kNoticeTimeout;
  while (delivered_ == deliveredBefore) {
    require(std::chrono::steady_clock::now() < deadline, "a demotion is not delivered");
    std::this_thread::sleep_for(kPause);
  }
}

void tRouteClient::tearDown(uint32_t ticket) {
  work_.progress->enter(tStep::unprogram);
  zoroco_ra_quenra_unprogramRoute(session_, ticket, 0, 0);
  work_.progress->enter(tStep::unreserve);
  zoroco_ra_quenra_unreserveRoute(session_, ticket, 0, 0);
  work_.progress->enter(tStep::destroyRoute);
  zoroco_ra_quenra_destroyRoute(session_, ticket, 0, 0);
  ++work_.tally->routes;
}

void tRouteClient::useRoute() {
  if (session_ == nullptr) {
    return;
  }
  const uint32_t ticket = calculate();
  if (ticket == 0) {
    return;
  }
  const uint64_t deliveredBefore = delivered_;
  if (reserve(ticket)) {
    bool isDemoted = !program(ticket);
    checkPath(ticket);
    if (work_.machine != nullptr && work_.random->oneIn(16)) {
      demote(ticket);
      isDemoted = true;
    } else if (work_.random->oneIn(4)) {
      std::this_thread::sleep_for(kPause);
    }
    if (isDemoted) {
      awaitDemotion(deliveredBefore);
    }
  }
  tearDown(ticket);
}

void tRouteClient::abandonRoute() {
  if (session_ == nullptr) {
    return;
  }
  const uint32_t ticket = calculate();
  if (ticket != 0 && reserve(ticket)) {
    if (work_.random->oneIn(2)) {
      program(ticket);
    }
    ++work_.tally->abandoned;
  }
}

void tRouteClient::iterateTerminals() {
  if (session_ == nullptr) {
    return;
  }
  work_.progress->enter(tStep::terminals);
  zoroco_TerminalIterator* const iterator = zoroco_ra_quenra_getAllTerminals(session_, &status_, 0);
  uint32_t count = 0;
  if (succeeded("iterating over the terminals")) {
    for (; !zoroco_ra_quenra_TerminalIterator_isEnd(iterator); ++count) {
      const char* const name =
          zoroco_ra_quenra_TerminalIterator_getStringAttribute(iterator, "name", &status_);
      require(succeeded("naming a terminal") && name != nullptr, "every terminal has a name");
      zoroco_ra_quenra_TerminalIterator_calculateResetTerminal(session_, iterator, "default",
                                                               &status_);
      succeeded("calculating a reset");
      zoroco_ra_quenra_TerminalIterator_next(iterator, &status_);
      require(succeeded("moving to the next terminal"), "an iteration continues");
    }
    require(count == 11 || work_.faults == tFaults::anywhere,
            "there are 11 terminals, not " + std::to_string(count));
  }
  zoroco_ra_quenra_TerminalIterator_destroy(iterator);
}

}  // namespace nTests
