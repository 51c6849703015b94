// The JSON requests and answers of the routing functions.
#ifndef TOOLS_QUENRA_ROUTING_ANSWERS_H
#define TOOLS_QUENRA_ROUTING_ANSWERS_H

#include <string>
#include <string_view>
#include <vector>

#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/routing/troutingsession.h"

namespace nCommandLine {

[[nodiscard]] std::string seedsText(const tWantedRoute& wanted);
[[nodiscard]] std::string destinationsText(const tWantedRoute& wanted);
[[nodiscard]] std::string modifiersText(const tWantedRoute& wanted);

// Items that violate the contract are skipped.
[[nodiscard]] std::vector<tRoute> routesIn(std::string_view answer);
[[nodiscard]] std::vector<std::string> terminalsIn(std::string_view answer);
[[nodiscard]] std::vector<tRouteHolder> holdersIn(std::string_view answer);

// The name of a trigger router that the library does not support, from the description of the
// status; empty if the description has none.
[[nodiscard]] std::string unknownRouterIn(std::string_view description);

}  // namespace nCommandLine

#endif
