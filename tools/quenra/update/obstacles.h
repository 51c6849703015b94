// Finds every obstacle to an update; the library stops at the first one.
#ifndef TOOLS_QUENRA_UPDATE_OBSTACLES_H
#define TOOLS_QUENRA_UPDATE_OBSTACLES_H

#include <optional>
#include <string>
#include <vector>

#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/update/iupdatefacts.h"
#include "tools/quenra/update/updateplan.h"

namespace nCommandLine {

struct tObstacle {
  std::string fact;
  std::string remedy;           // a sentence
  std::optional<int32_t> code;  // failure code of the library; none if it continues
  uint32_t line = 0;            // 0 if unknown
  std::optional<size_t> section = std::nullopt;  // its position in the image, from 1
};

// `plan` was made for `machine`, which is null if the controller could not be opened.
struct tUpdateSituation {
  const tUpdateMachine* machine;
  const std::vector<tPlannedSection>& plan;
  tUpdateOptions options;
};

// Returns the obstacles in the order in which the library would meet them.
[[nodiscard]] std::vector<tObstacle> findObstacles(const tUpdateSituation& situation,
                                                   iUpdateFacts& facts);

// The exit code for an update that fails with `code` while the controller is open.
[[nodiscard]] tExitCode exitCodeOfUpdate(int32_t code) noexcept;

}  // namespace nCommandLine

#endif
