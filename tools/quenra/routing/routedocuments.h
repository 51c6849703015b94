// The JSON requests and answers of the routing functions.
#ifndef TOOLS_QUENRA_ROUTING_ROUTEDOCUMENTS_H
#define TOOLS_QUENRA_ROUTING_ROUTEDOCUMENTS_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tools/quenra/output/diagnostics.h"

namespace nCommandLine {

struct tRouteRequest {
  std::string from;
  std::string to;
  bool inverted = false;
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

// The name of a trigger router that the library does not support, from the description of the
// status; empty if the description has none.
[[nodiscard]] std::string unknownRouterIn(std::string_view description);

}  // namespace nCommandLine

#endif
