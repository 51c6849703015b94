#ifndef TOOLS_QUENRA_UPDATE_TUPDATEFACTS_H
#define TOOLS_QUENRA_UPDATE_TUPDATEFACTS_H

#include "tools/quenra/update/iupdatefacts.h"

namespace nCommandLine {

// Examines the machine with the same system calls as the library.
class tUpdateFacts final : public iUpdateFacts {
 public:
  [[nodiscard]] tDriveProtection driveProtection() noexcept override;
  [[nodiscard]] tDriverStoreTool driverStoreTool() override;
  [[nodiscard]] std::string temporaryFolder() override;
  [[nodiscard]] std::error_code temporaryFolderFailure() override;
};

}  // namespace nCommandLine

#endif
