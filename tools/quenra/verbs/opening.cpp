#include "tools/quenra/verbs/opening.h"

#include "quenra_status.h"
#include "tools/quenra/tcommanderror.h"

namespace nCommandLine {
namespace {

constexpr const char* kFailure = "cannot open the controller";

std::string failureOf(const std::string& cause) {
  return std::string(kFailure) + ": " + cause;
}

// Two interfaces of a kind, which the library refuses.
void judgeCount(const tController& controller, tInterface which, const char* kind,
                const char* supported) {
  const uint32_t count = controller.presentInterfaces(which);
  if (controller.code() == QUENRA_STATUS_GENERIC_FAILURE && count > 1) {
    throw tCommandError(
        exitCodeOfOpening(controller.code()),
        failureOf(std::to_string(count) + " " + kind + " interfaces are present; " + supported),
        controller.code(), tRemedy{"Disable the others in the system's device manager."});
  }
}

// The codes of a machine whose table cannot be read, or names a machine that the library does not
// serve. Without a controller interface the same code means that there is none.
void judgeTable(const tController& controller) {
  const int32_t code = controller.code();
  const bool isCodeOfTable =
      code == QUENRA_STATUS_NO_CONTROLLER || code == QUENRA_STATUS_NOT_SUPPORTED;
  if (isCodeOfTable && controller.presentInterfaces(tInterface::controller) > 0) {
    throw tCommandError(
        exitCodeOfOpening(code),
        failureOf("the driver replied, but its SMBIOS table is unusable or is not that of a "
                  "supported machine"),
        code, tRemedy{"Update the machine's firmware, which makes the table, and the driver."});
  }
}

}  // namespace

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
    throw tCommandError(exitCodeOfOpening(code), kFailure, code);
  }
  if (code > 0) {
    warnings.push_back({"opening the controller", code});
  }
}

void judgeOpening(const tController& controller, std::vector<tWarning>& warnings) {
  if (controller.code() < 0) {
    judgeCount(controller, tInterface::controller, "controller", "exactly 1 is supported");
    judgeCount(controller, tInterface::marten, "Marten", "at most 1 is supported");
    judgeTable(controller);
  }
  judgeOpening(controller.code(), warnings);
}

}  // namespace nCommandLine
