#include "zoarkra/topography.h"

#include <algorithm>

#include "protocol/routingrecords.h"

namespace zoark {

uint32_t terminalIdOf(const tTopography& topography, std::string_view name) noexcept {
  const auto terminals = topography.terminals();
  const auto found = std::find_if(terminals.begin(), terminals.end(),
                                  [name](const tTerminal& t) { return name == t.name; });
  return found == terminals.end() ? ROUTE_NO_TERMINAL : found->id;
}

const char* terminalNameOf(const tTopography& topography, uint32_t id) noexcept {
  const auto terminals = topography.terminals();
  const auto found = std::find_if(terminals.begin(), terminals.end(),
                                  [id](const tTerminal& t) { return id == t.id; });
  return found == terminals.end() ? "" : found->name;
}

}  // namespace zoark
