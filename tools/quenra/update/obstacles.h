// Everything that stops an update, where the library stops at the first.
#ifndef TOOLS_QUENRA_UPDATE_OBSTACLES_H
#define TOOLS_QUENRA_UPDATE_OBSTACLES_H

#include <optional>
#include <string>
#include <vector>

#include "tools/quenra/exitcode.h"
#include "tools/quenra/update/iupdatefacts.h"
#include "tools/quenra/update/updateplan.h"

namespace nCommandLine {

struct tObstacle {
  std::string fact;
  std::string remedy;           // a sentence
  std::optional<int32_t> code;  // with which the library fails; none if it does not
  uint32_t line = 0;            // 0 where it is not known
  std::optional<size_t> section = std::nullopt;  // its place in the image, from 1
};

// `plan` is the one that was made of the machine, which is null where none could be opened.
struct tUpdateSituation {
  const tUpdateMachine* machine;
  const std::vector<tPlannedSection>& plan;
  tUpdateOptions options;
};

// In the order in which the library would come across them.
[[nodiscard]] std::vector<tObstacle> findObstacles(const tUpdateSituation& situation,
                                                   iUpdateFacts& facts);

// The exit code for an update that fails with a code, the controller being open.
[[nodiscard]] tExitCode exitCodeOfUpdate(int32_t code) noexcept;

}  // namespace nCommandLine

#endif
