#ifndef TOOLS_QUENRA_UPDATE_TUPDATEFACTS_H
#define TOOLS_QUENRA_UPDATE_TUPDATEFACTS_H

#include "tools/quenra/update/iupdatefacts.h"

namespace nCommandLine {

// The machine that the program runs on, examined with the calls that the library makes.
class tUpdateFacts final : public iUpdateFacts {
 public:
  [[nodiscard]] tDriveProtection driveProtection() noexcept override;
  [[nodiscard]] tDriverStoreTool driverStoreTool() override;
  [[nodiscard]] std::string temporaryFolder() override;
  [[nodiscard]] std::error_code temporaryFolderFailure() override;
};

}  // namespace nCommandLine

#endif
