#include "tools/quenra/update/tupdatefacts.h"

#include <windows.h>

#include "source/user/preconditions/driveencryption.h"
#include "source/user/update/driverpackage.h"
#include "tools/quenra/firmware/sectionfault.h"

namespace nCommandLine {

tDriveProtection tUpdateFacts::driveProtection() noexcept {
  zoerr::tOwnedStatus status;
  const bool isOn = nQUENRA1400::IsSystemDriveEncrypted(status);
  return {isOn, status.code, lineOf(status)};
}

bool tUpdateFacts::hasDriverStoreTool() noexcept {
  const DWORD attributes = GetFileAttributesA(nQUENRA1400::kDriverStoreTool);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

}  // namespace nCommandLine
