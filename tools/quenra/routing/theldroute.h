#ifndef TOOLS_QUENRA_ROUTING_THELDROUTE_H
#define TOOLS_QUENRA_ROUTING_THELDROUTE_H

#include <cstdint>

#include "tools/quenra/routing/troutingsession.h"

namespace nCommandLine {

// A route from its calculation to its end. When the object ends, the steps that it came to are undone
// in the opposite order.
class tHeldRoute {
 public:
  tHeldRoute(tRoutingSession& session, uint32_t ticket) noexcept
      : session_(session), ticket_(ticket) {}
  tHeldRoute(const tHeldRoute&) = delete;
  tHeldRoute& operator=(const tHeldRoute&) = delete;
  ~tHeldRoute();

  // Each throws tCommandError.
  void reserve();
  void program();
  [[nodiscard]] std::vector<std::string> path() const { return session_.path(ticket_); }

  // Something went wrong with it: the driver is told so before it is taken down.
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
