#ifndef TOOLS_QUENRA_UPDATE_TUPDATEFACTS_H
#define TOOLS_QUENRA_UPDATE_TUPDATEFACTS_H

#include "tools/quenra/update/iupdatefacts.h"

namespace nCommandLine {

// The machine that the program runs on, asked as the library asks it.
class tUpdateFacts final : public iUpdateFacts {
 public:
  [[nodiscard]] tDriveProtection driveProtection() noexcept override;
  [[nodiscard]] bool hasDriverStoreTool() noexcept override;
};

}  // namespace nCommandLine

#endif
