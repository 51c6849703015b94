#include "zoarkra/arkroutingadaptorsession.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "protocol/routingrequests.h"
#include "zoarkra/failure.h"
#include "zoarkra/jsonreader.h"
#include "zoarkra/memory.h"
#include "zoarkra/routeanswers.h"
#include "zoarkra/topography.h"

namespace zoark {
namespace {

using nZOAPALS100::tStatus;

constexpr auto kNameMissing = adaptorLocation(203, kInvalidParameterConstant);
constexpr auto kCountImplausible = adaptorLocation(288, kMemoryFullConstant);

// The public names of the codes that the session reports.
static_assert(kBadSelector == QUENRA_STATUS_BAD_SELECTOR);
static_assert(DRIVER_STATUS_ROUTE_CONFLICT == QUENRA_STATUS_ROUTE_CONFLICT);
static_assert(DRIVER_STATUS_PATH_TOO_LONG == QUENRA_STATUS_PATH_TOO_LONG);
static_assert(nQUENRA1400::nZOAPAL000::tArray<char>::kMaxSize == ZOROCO_MAX_DEVICE_NAME_LENGTH);

constexpr uint32_t kFirstConflicts = 8;
constexpr uint32_t kRoutesPerDestination = 2;
// The conflicts or terminals that a driver may report: far more than a router has, and so few that one
// wrong reply costs little, now or later.
constexpr uint32_t kMaxCount = ZOROCO_MAX_CONFLICTS;
static_assert(kMaxCount == ZOROCO_MAX_PATH_TERMINALS);

// Memory for the records of a request of 4 KiB.
using tRequestMemory = tStackMemory<size_t{32} * 1024>;
// Memory for a path or a conflict report of ordinary length, also after a path of kMaxCount terminals
// was reported.
using tListMemory = tStackMemory<size_t{8} * 1024>;

// The number of terminals for which getRouteTerminalPath first provides a buffer. A lost update costs
// one more request.
std::atomic<uint32_t> pathCapacity = 32;

void raisePathCapacity(uint32_t capacity) noexcept {
  if (capacity > pathCapacity.load(std::memory_order_relaxed)) {
    pathCapacity.store(capacity, std::memory_order_relaxed);
  }
}

template <class Record>
uint64_t addressOf(const std::pmr::vector<Record>& records) noexcept {
  return records.empty() ? 0 : reinterpret_cast<uintptr_t>(records.data());
}

// Each record takes at least one byte of its document.
static_assert(kMaxJsonSize <= std::numeric_limits<uint32_t>::max() / kRoutesPerDestination);

template <class Record>
uint32_t countOf(const std::pmr::vector<Record>& records) noexcept {
  return static_cast<uint32_t>(records.size());
}

// Resizes to the count that the driver reports; new records are zero. Reports a count beyond kMaxCount
// as out of memory, without an allocation.
template <class Record>
void resizeToReportedCount(std::pmr::vector<Record>& records, uint32_t count) {
  if (count > kMaxCount) {
    raise(nZOAPALS100::kMemoryFull, kCountImplausible);
  }
  records.resize(count);
}

// Drops the records that the driver has not filled. A count beyond the capacity drops none.
template <class Record>
void keepFilled(std::pmr::vector<Record>& records, uint32_t count) {
  records.resize(std::min<size_t>(count, records.size()));
}

// Calls a function of the client on a thread of the session, where no caller receives an exception.
template <class Call>
void callClient(Call call) noexcept {
  try {
    call();
  } catch (...) {  // NOLINT(bugprone-empty-catch): no status to report to
  }
}

// One step of a teardown. It has no status of a caller, so that warnings of the driver are dropped.
template <class Step>
void tearDown(Step step) {
  tStatus driver;
  step(driver);
  zoerr::tOwnedStatus dropped;
  mergeDriverStatus(driver, dropped);
}

}  // namespace

ARKRoutingAdaptorSession::ARKRoutingAdaptorSession(std::unique_ptr<iRoutingDevice> device,
                                                   const char* deviceInterfaceName,
                                                   const tClientFunctions& client,
                                                   zoerr::Status& status)
    : device_(std::move(device)), reallocate_(client.reallocate), notificationsEnd_(*device_) {
  if (deviceInterfaceName == nullptr) {
    raise(nZOAPALS100::kInvalidParameter, kNameMissing);
  }
  // One character beyond the capacity shows that the name is too long; no more are read.
  deviceInterfaceName_.assign(deviceInterfaceName,
                              strnlen(deviceInterfaceName, deviceInterfaceName_.kMaxSize + 1));
  open(status);
  context_ = client.context;
  callback_.store(client.callback, std::memory_order_release);
}

ARKRoutingAdaptorSession::~ARKRoutingAdaptorSession() = default;

void ARKRoutingAdaptorSession::open(zoerr::Status& status) {
  tStatus driver = statusForDriver(status);
  device_->open(deviceInterfaceName_.data(), driver);
  device_->startNotifications(*this, driver);
  std::array<char, ROUTING_TOPOGRAPHY_NAME_SIZE> name{};
  proxy().getTopographyName(reinterpret_cast<uintptr_t>(name.data()),
                            static_cast<uint32_t>(name.size()), driver);
  mergeDriverStatus(driver, status);
  topography_ = &findTopography({name.data(), strnlen(name.data(), name.size())});
}

void ARKRoutingAdaptorSession::routeDemoted(void* notification) noexcept {
  const zoroco_DemotionCallback callback = callback_.load(std::memory_order_acquire);
  if (callback == nullptr) {
    return;
  }
  zoerr_Status status = zoerr_Status_initial();
  callClient([&] { callback(context_, ZOROCO_REASON_DEMOTED, &status, notification); });
  callClient([&] { zoerr_Status_release(&status); });
}

void ARKRoutingAdaptorSession::getHandledConstraints(char** output, zoerr::Status&) {
  tListMemory memory;
  std::pmr::string text(memory.resource());
  describeHandledConstraints(text);
  tClientOutput(reallocate_, output).write(text);
}

uint32_t ARKRoutingAdaptorSession::calculateRoute(const tRequestTexts& texts, char** output,
                                                  zoerr::Status& status) {
  const tClientOutput answer(reallocate_, output);
  answer.requireOutput();
  tRequestMemory memory;
  tRouteRequest request(memory.resource());
  readRouteRequest(texts, *topography_, request);

  std::pmr::vector<tRouteRecord> routes(request.destinations.size() * kRoutesPerDestination,
                                        memory.resource());
  uint32_t routeCount = countOf(routes);
  tStatus driver = statusForDriver(status);
  const uint32_t value = proxy().calculateRoute(
      reinterpret_cast<uintptr_t>(&request.modifiers), addressOf(request.seeds),
      countOf(request.seeds), addressOf(request.destinations), countOf(request.destinations),
      request.options, addressOf(routes), routeCount, driver);
  mergeDriverStatus(driver, status);

  keepFilled(routes, routeCount);
  std::pmr::string text(memory.resource());
  describeRoutes(routes, *topography_, text);
  answer.write(text);
  return value;
}

void ARKRoutingAdaptorSession::reserveRoute(uint32_t ticket, char** output, zoerr::Status& status) {
  tListMemory memory;
  std::pmr::vector<tRouteConflict> conflicts(kFirstConflicts, memory.resource());
  uint32_t count = kFirstConflicts;
  tStatus driver = statusForDriver(status);
  proxy().reserveRoute(ticket, addressOf(conflicts), count, driver);
  if (driver.code == DRIVER_STATUS_ROUTE_CONFLICT) {
    resizeToReportedCount(conflicts, count);
    std::pmr::string text(memory.resource());
    describeConflicts(conflicts, text);
    tClientOutput(reallocate_, output).write(text);
  }
  mergeDriverStatus(driver, status);
}

void ARKRoutingAdaptorSession::programRoute(uint32_t ticket, zoerr::Status& status) {
  tStatus driver = statusForDriver(status);
  proxy().programRoute(ticket, driver);
  mergeDriverStatus(driver, status);
}

void ARKRoutingAdaptorSession::unprogramRoute(uint32_t ticket, uint64_t, uint64_t) {
  tearDown([&](tStatus& driver) { proxy().unprogramRoute(ticket, driver); });
}

void ARKRoutingAdaptorSession::unreserveRoute(uint32_t ticket, uint64_t, uint64_t) {
  tearDown([&](tStatus& driver) { proxy().unreserveRoute(ticket, driver); });
}

void ARKRoutingAdaptorSession::beginExceptionalRouteDestruction(uint32_t, uint64_t, uint64_t) {}

void ARKRoutingAdaptorSession::destroyRoute(uint32_t ticket, uint64_t, uint64_t) {
  tearDown([&](tStatus& driver) { proxy().destroyRoute(ticket, driver); });
}

void ARKRoutingAdaptorSession::getRouteTerminalPath(uint32_t ticket, char** output,
                                                    zoerr::Status& status) {
  const tClientOutput answer(reallocate_, output);
  answer.requireOutput();
  tListMemory memory;
  uint32_t count = pathCapacity.load(std::memory_order_relaxed);
  std::pmr::vector<uint32_t> terminals(count, memory.resource());
  tStatus driver = statusForDriver(status);
  proxy().getRouteTerminalPath(ticket, addressOf(terminals), count, driver);
  if (driver.code == DRIVER_STATUS_PATH_TOO_LONG) {
    resizeToReportedCount(terminals, count);
    raisePathCapacity(count);
    driver = statusForDriver(status);
    proxy().getRouteTerminalPath(ticket, addressOf(terminals), count, driver);
  }
  mergeDriverStatus(driver, status);
  keepFilled(terminals, count);
  std::pmr::string text(memory.resource());
  describePath(terminals, *topography_, text);
  answer.write(text);
}

std::unique_ptr<zoroco::TerminalIteratorInterface> ARKRoutingAdaptorSession::getAllTerminals(
    zoerr::Status&, uint64_t) {
  return std::make_unique<ARKTerminalIterator>(*topography_, proxy());
}

uint32_t ARKRoutingAdaptorSession::calculateResetTerminal(
    const zoroco::TerminalIteratorInterface& iterator, const char* mode, zoerr::Status& status) {
  constexpr uint64_t kReserved = 0;
  const uint32_t floating = floatingFlagOf(mode);
  const uint32_t terminal = iterator.getU32Attribute("id", status);
  tStatus driver = statusForDriver(status);
  const uint32_t value =
      proxy().calculateResetTerminal(kReserved, terminal, static_cast<int32_t>(floating), driver);
  mergeDriverStatus(driver, status);
  return value;
}

}  // namespace zoark
