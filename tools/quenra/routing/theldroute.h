#ifndef TOOLS_QUENRA_ROUTING_THELDROUTE_H
#define TOOLS_QUENRA_ROUTING_THELDROUTE_H

#include <cstdint>

#include "tools/quenra/routing/troutingsession.h"

namespace nCommandLine {

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
  void hasFailed() noexcept { failed_ = true; }

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
