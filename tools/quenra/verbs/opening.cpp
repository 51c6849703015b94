#include "tools/quenra/verbs/opening.h"

#include "quenra_status.h"
#include "tools/quenra/tcommanderror.h"

namespace nCommandLine {

tExitCode exitCodeOfOpening(int32_t code) noexcept {
  switch (code) {
    case QUENRA_STATUS_NO_CONTROLLER:
      return tExitCode::noController;
    case QUENRA_STATUS_NOT_SUPPORTED:
      return tExitCode::notSupported;
    default:
      return tExitCode::failure;
  }
}

void judgeOpening(int32_t code, std::vector<tWarning>& warnings) {
  if (code < 0) {
    throw tCommandError(exitCodeOfOpening(code), "the controller cannot be opened", code);
  }
  if (code > 0) {
    warnings.push_back({"opening the controller", code});
  }
}

}  // namespace nCommandLine
