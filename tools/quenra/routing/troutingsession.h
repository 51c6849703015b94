// A session with the trigger router, and the routes that it holds.
#ifndef TOOLS_QUENRA_ROUTING_TROUTINGSESSION_H
#define TOOLS_QUENRA_ROUTING_TROUTINGSESSION_H

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/reading/iquenra.h"
#include "tools/quenra/routing/irouting.h"

namespace nCommandLine {

// ---- The JSON requests and answers of the routing functions ----

struct tRouteRequest {
  std::string from;
  std::string to;
  bool inverted = false;
  bool ignoresReservations = false;  // only while it is calculated
};

struct tRoute {
  uint32_t ticket = 0;
  uint32_t cost = 0;
  bool inverted = false;
};

[[nodiscard]] std::string seedsText(const tRouteRequest& request);
[[nodiscard]] std::string destinationsText(const tRouteRequest& request);
[[nodiscard]] std::string modifiersText(const tRouteRequest& request);

// Items that violate the contract are skipped.
[[nodiscard]] std::vector<tRoute> routesIn(std::string_view answer);
[[nodiscard]] std::vector<std::string> terminalsIn(std::string_view answer);
[[nodiscard]] std::vector<tRouteHolder> holdersIn(std::string_view answer);

// "ticket 9 (session 4), ticket 3 (session 2)"
[[nodiscard]] std::string holdersText(const std::vector<tRouteHolder>& holders);

// The name of a trigger router that the library does not support, from the description of the
// status; empty if the description has none.
[[nodiscard]] std::string unknownRouterIn(std::string_view description);

// ---- The session ----

// The path of the device for routing sessions. Throws tCommandError on failure.
[[nodiscard]] std::string routingDevice(iQuenra& library);

// The routes of this process, for metrics.
struct tRouteCounters {
  std::atomic<uint64_t> programmed = 0;
  std::atomic<uint64_t> demoted = 0;
};
[[nodiscard]] tRouteCounters& routeCounters() noexcept;

// Queue of demotions from the session's callback thread to the thread that prints them.
class tDemotions {
 public:
  // Demotions are rare. A full queue drops further ones.
  static constexpr size_t kCapacity = 64;

  // Allocates nothing: the callback cannot report a failure to the library.
  void add(int32_t reason) noexcept;
  // Removes and returns the oldest demotion; empty if none arrives within the time.
  [[nodiscard]] std::optional<int32_t> take(std::chrono::milliseconds time);

 private:
  std::mutex mutex_;
  std::condition_variable added_;
  std::array<int32_t, kCapacity> reasons_{};
  size_t first_ = 0;
  size_t count_ = 0;
};

struct tTerminal {
  static constexpr uint32_t kNoBusLine = ZOROCO_NO_BUS_LINE;

  std::string name;
  std::string canonicalName;
  std::string visibility;
  std::string busType;  // empty for none, like busName
  std::string busName;
  uint32_t id = 0;
  uint32_t busLine = kNoBusLine;
  bool isExternal = false;
  bool isOwned = false;
  bool isAlias = false;
  bool isMaskedOut = false;
};

// Owns a session with the routing device. Throws a failure of the library as tCommandError and
// collects its warnings.
class tRoutingSession {
 public:
  // `demotions` receives demotions until the session is destroyed, and must outlive it.
  tRoutingSession(iRouting& library, const std::string& device, tDemotions& demotions);
  tRoutingSession(const tRoutingSession&) = delete;
  tRoutingSession& operator=(const tRoutingSession&) = delete;
  ~tRoutingSession();

  [[nodiscard]] std::vector<tTerminal> terminals();

  // Empty if no such route exists.
  [[nodiscard]] std::vector<tRoute> calculate(const tRouteRequest& request);
  void reserve(uint32_t ticket);
  void program(uint32_t ticket);
  [[nodiscard]] std::vector<std::string> path(uint32_t ticket);

  // Teardown reports no failure.
  void unprogram(uint32_t ticket) noexcept;
  void unreserve(uint32_t ticket) noexcept;
  void destroy(uint32_t ticket) noexcept;
  void announceFailure(uint32_t ticket) noexcept;

  [[nodiscard]] const std::vector<tWarning>& warnings() const noexcept { return warnings_; }

 private:
  void check(const zoerr_Status& status, const std::string& failure);
  [[nodiscard]] tTerminal readTerminal(iRouting::tIterator* iterator, zoerr_Status& status) const;

  iRouting& library_;
  iRouting::tSession* session_ = nullptr;
  std::vector<tWarning> warnings_;
};

// A calculated route. The destructor undoes the completed steps in reverse order and destroys the
// route.
class tHeldRoute {
 public:
  tHeldRoute(tRoutingSession& session, uint32_t ticket) noexcept
      : session_(session), ticket_(ticket) {}
  tHeldRoute(const tHeldRoute&) = delete;
  tHeldRoute& operator=(const tHeldRoute&) = delete;
  ~tHeldRoute();

  // Each throws tCommandError on failure.
  void reserve();
  void program();
  [[nodiscard]] std::vector<std::string> path() const { return session_.path(ticket_); }

  // Marks the route as failed: the destructor announces the failure to the driver first.
  void markFailed() noexcept { failed_ = true; }

 private:
  enum class tStage : uint8_t {
    calculated,
    reserved,
    programmed
  };

  tRoutingSession& session_;
  uint32_t ticket_;
  tStage stage_ = tStage::calculated;
  bool failed_ = false;
};

}  // namespace nCommandLine

#endif
