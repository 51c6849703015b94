#include "tools/quenra/routing/troutingsession.h"

#include <cstdlib>

#include "tools/quenra/reading/tcontroller.h"

namespace nCommandLine {
namespace {

tExitCode exitCodeOf(const tReading& reading) noexcept {
  return reading.state() == tReadingState::notAvailable   ? tExitCode::noController
         : reading.state() == tReadingState::notSupported ? tExitCode::notSupported
                                                          : tExitCode::failure;
}

class tRoutingStatus {
 public:
  tRoutingStatus() = default;
  tRoutingStatus(const tRoutingStatus&) = delete;
  tRoutingStatus& operator=(const tRoutingStatus&) = delete;
  ~tRoutingStatus() { zoerr_Status_release(&record_); }

  [[nodiscard]] zoerr_Status* get() noexcept { return &record_; }
  [[nodiscard]] zoerr_Status& record() noexcept { return record_; }
  [[nodiscard]] int32_t code() const noexcept { return record_.code; }

 private:
  zoerr_Status record_ = zoerr_Status_initial();
};

// The buffer of an answer, which the library requests through the reallocation function.
class tAnswer {
 public:
  tAnswer() = default;
  tAnswer(const tAnswer&) = delete;
  tAnswer& operator=(const tAnswer&) = delete;
  ~tAnswer() { std::free(text_); }

  [[nodiscard]] char** output() noexcept { return &text_; }
  [[nodiscard]] std::string_view text() const noexcept { return text_ == nullptr ? "" : text_; }

  static char* reallocate(char* current, size_t required, const char* /*text*/,
                          size_t /*requiredAgain*/) noexcept {
    return static_cast<char*>(std::realloc(current, required));
  }

 private:
  char* text_ = nullptr;
};

// Runs on a thread of the session.
void reportDemotion(void* context, int32_t reason, zoerr_Status* /*status*/,
                    void* /*notification*/) noexcept {
  static_cast<tDemotions*>(context)->add(reason);
}

std::string textOf(const char* text) {
  return text == nullptr ? "" : text;
}

// The maximum of the library; a longer path would end the process.
constexpr size_t kMaxDeviceSize = 256;

const std::string& checkedDevice(const std::string& device) {
  if (device.size() > kMaxDeviceSize) {
    throw tCommandError(tExitCode::failure, "the device has a path of more than 256 characters",
                        std::nullopt);
  }
  return device;
}

[[noreturn]] void rejectUnknownRouter(const zoerr_Status& status) {
  const std::string name = unknownRouterIn(textOf(status.description));
  throw tCommandError(tExitCode::notSupported,
                      "this version does not support the router of this machine" +
                          (name.empty() ? "" : " (" + name + ")"),
                      status.code,
                      tSiteExplanation{{}, "Install a version of quenra that knows the router."});
}

tCommandError heldRouteError(const std::vector<tRouteHolder>& holders, int32_t code) {
  tCommandError error(
      tExitCode::failure, "cannot reserve the route: held by " + holdersText(holders), code,
      tSiteExplanation{
          {},
          "End the programs that hold these routes, or choose another trigger line. The driver "
          "does not reveal which program a session belongs to."});
  error.setHolders(holders);
  return error;
}

// Owns an iterator over the terminals.
class tWalk {
 public:
  tWalk(iRouting& library, iRouting::tIterator* iterator) : library_(library), at_(iterator) {}
  tWalk(const tWalk&) = delete;
  tWalk& operator=(const tWalk&) = delete;
  ~tWalk() { library_.destroyIterator(at_); }

  [[nodiscard]] iRouting::tIterator* at() const noexcept { return at_; }

 private:
  iRouting& library_;
  iRouting::tIterator* at_;
};

}  // namespace

std::string holdersText(const std::vector<tRouteHolder>& holders) {
  std::string text;
  for (const tRouteHolder& holder : holders) {
    text += (text.empty() ? "ticket " : ", ticket ") + std::to_string(holder.ticket) +
            " (session " + std::to_string(holder.session) + ")";
  }
  return text;
}

std::string routingDevice(iQuenra& library) {
  const tReading reading = readAttribute(library, 0, {QUENRA_ATTRIBUTE_DEVICE_PATH});
  if (reading.state() != tReadingState::value) {
    throw tCommandError(exitCodeOf(reading), "cannot find the trigger routing device",
                        reading.code);
  }
  return std::get<std::string>(reading.value);
}

tRouteCounters& routeCounters() noexcept {
  constinit static tRouteCounters counters;
  return counters;
}

void tDemotions::add(int32_t reason) noexcept {
  ++routeCounters().demoted;
  {
    const std::scoped_lock lock(mutex_);
    if (count_ < kCapacity) {
      reasons_[(first_ + count_) % kCapacity] = reason;
      ++count_;
    }
  }
  added_.notify_one();
}

std::optional<int32_t> tDemotions::take(std::chrono::milliseconds time) {
  std::unique_lock lock(mutex_);
  if (!added_.wait_for(lock, time, [this] { return count_ > 0; })) {
    return std::nullopt;
  }
  const int32_t reason = reasons_[first_];
  first_ = (first_ + 1) % kCapacity;
  --count_;
  return reason;
}

tRoutingSession::tRoutingSession(iRouting& library, const std::string& device,
                                 tDemotions& demotions)
    : library_(library) {
  tRoutingStatus status;
  session_ = library_.createSession(checkedDevice(device).c_str(), tAnswer::reallocate,
                                    reportDemotion, &demotions, status.get());
  if (status.code() == QUENRA_STATUS_BAD_SELECTOR) {
    rejectUnknownRouter(status.record());
  }
  check(status.record(), "cannot open a routing session");
}

tRoutingSession::~tRoutingSession() {
  library_.destroySession(session_);
}

std::vector<tTerminal> tRoutingSession::terminals() {
  tRoutingStatus status;
  std::vector<tTerminal> terminals;
  const tWalk walk(library_, library_.getAllTerminals(session_, status.get()));
  while (status.code() >= 0 && !library_.isEnd(walk.at())) {
    terminals.push_back(readTerminal(walk.at(), status.record()));
    library_.next(walk.at(), status.get());
  }
  check(status.record(), "cannot list the terminals");
  return terminals;
}

tTerminal tRoutingSession::readTerminal(iRouting::tIterator* iterator, zoerr_Status& status) const {
  const auto text = [&](const char* name) {
    return textOf(library_.getStringAttribute(iterator, name, &status));
  };
  const auto truth = [&](const char* name) {
    return library_.getBoolAttribute(iterator, name, &status);
  };
  tTerminal terminal;
  terminal.name = text("name");
  terminal.canonicalName = text("canonicalName");
  terminal.visibility = text("visibility");
  terminal.busType = text("busType");
  terminal.busName = text("busName");
  terminal.id = library_.getU32Attribute(iterator, "id", &status);
  terminal.busLine = library_.getU32Attribute(iterator, "busLine", &status);
  terminal.isExternal = truth("isExternal");
  terminal.isOwned = truth("isOwned");
  terminal.isAlias = truth("isAlias");
  terminal.isMaskedOut = truth("isMaskedOut");
  return terminal;
}

std::vector<tRoute> tRoutingSession::calculate(const tRouteRequest& request) {
  tRoutingStatus status;
  tAnswer answer;
  library_.calculateRoute(session_, seedsText(request).c_str(), destinationsText(request).c_str(),
                          modifiersText(request).c_str(), answer.output(), status.get());
  check(status.record(), "cannot calculate the route");
  return routesIn(answer.text());
}

void tRoutingSession::reserve(uint32_t ticket) {
  tRoutingStatus status;
  tAnswer answer;
  library_.reserveRoute(session_, ticket, answer.output(), status.get());
  const std::vector<tRouteHolder> holders = holdersIn(answer.text());
  if (status.code() < 0 && !holders.empty()) {
    throw heldRouteError(holders, status.code());
  }
  check(status.record(), "cannot reserve the route");
}

void tRoutingSession::program(uint32_t ticket) {
  tRoutingStatus status;
  library_.programRoute(session_, ticket, status.get());
  check(status.record(), "cannot program the route");
  ++routeCounters().programmed;
}

std::vector<std::string> tRoutingSession::path(uint32_t ticket) {
  tRoutingStatus status;
  tAnswer answer;
  library_.getRouteTerminalPath(session_, ticket, answer.output(), status.get());
  check(status.record(), "cannot read the terminals of the route");
  return terminalsIn(answer.text());
}

void tRoutingSession::unprogram(uint32_t ticket) noexcept {
  library_.unprogramRoute(session_, ticket);
}

void tRoutingSession::unreserve(uint32_t ticket) noexcept {
  library_.unreserveRoute(session_, ticket);
}

void tRoutingSession::destroy(uint32_t ticket) noexcept {
  library_.destroyRoute(session_, ticket);
}

void tRoutingSession::announceFailure(uint32_t ticket) noexcept {
  library_.beginExceptionalRouteDestruction(session_, ticket);
}

void tRoutingSession::check(const zoerr_Status& status, const std::string& failure) {
  if (status.code < 0) {
    throw tCommandError(tExitCode::failure, failure, status.code);
  }
  if (status.code > 0) {
    warnings_.push_back({"a step of the routing session", status.code});
  }
}

tHeldRoute::~tHeldRoute() {
  if (failed_) {
    session_.announceFailure(ticket_);
  }
  if (stage_ == tStage::programmed) {
    session_.unprogram(ticket_);
  }
  if (stage_ != tStage::calculated) {
    session_.unreserve(ticket_);
  }
  session_.destroy(ticket_);
}

void tHeldRoute::reserve() {
  failed_ = true;  // until the step is done
  session_.reserve(ticket_);
  stage_ = tStage::reserved;
  failed_ = false;
}

void tHeldRoute::program() {
  failed_ = true;  // until the step is done
  session_.program(ticket_);
  stage_ = tStage::programmed;
  failed_ = false;
}

}  // namespace nCommandLine
