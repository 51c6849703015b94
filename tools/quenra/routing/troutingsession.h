#ifndef TOOLS_QUENRA_ROUTING_TROUTINGSESSION_H
#define TOOLS_QUENRA_ROUTING_TROUTINGSESSION_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/routing/irouting.h"
#include "tools/quenra/routing/tdemotions.h"

namespace nCommandLine {

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

struct tWantedRoute {
  std::string from;
  std::string to;
  bool inverted = false;
};

struct tRoute {
  uint32_t ticket = 0;
  uint32_t cost = 0;
  bool inverted = false;
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
  [[nodiscard]] std::vector<tRoute> calculate(const tWantedRoute& wanted);
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
  void judge(const zoerr_Status& status, const std::string& failure);
  [[nodiscard]] tTerminal readTerminal(iRouting::tIterator* iterator, zoerr_Status& status) const;

  iRouting& library_;
  iRouting::tSession* session_ = nullptr;
  std::vector<tWarning> warnings_;
};

}  // namespace nCommandLine

#endif
