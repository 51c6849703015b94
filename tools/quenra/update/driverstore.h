// The operating system's tool for driver packages: the conditions under which an update may start it.
#ifndef TOOLS_QUENRA_UPDATE_DRIVERSTORE_H
#define TOOLS_QUENRA_UPDATE_DRIVERSTORE_H

#include <cstdint>
#include <optional>
#include <string>

#include "tools/quenra/update/iupdatefacts.h"

namespace nCommandLine {

struct tDriverStoreFault {
  std::string fact;
  std::string remedy;                          // a sentence
  std::optional<int32_t> code = std::nullopt;  // failure code of the library; none if it continues
  uint32_t line = 0;
};

// The reason why the tool must not or cannot be started; empty if it can.
[[nodiscard]] std::optional<tDriverStoreFault> faultOf(const tDriverStoreTool& tool);

// The fault for a system that refuses to start the tool. `reason` is clear if it is unknown.
[[nodiscard]] tDriverStoreFault toolNotStarted(const std::error_code& reason);

}  // namespace nCommandLine

#endif
