#include "tools/quenra/verbs/opening.h"

#include "quenra_status.h"

namespace nCommandLine {
namespace {

constexpr const char* kFailure = "cannot open the controller";

std::string failureOf(const std::string& cause) {
  return std::string(kFailure) + ": " + cause;
}

tOpeningFault tooMany(uint32_t count, const std::string& kind, const std::string& supported) {
  return {failureOf(std::to_string(count) + " " + kind + " interfaces are present; " + supported),
          {{}, "Disable the others in the system's device manager."}};
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

tOpeningFault faultOfOpening(const tController& controller) {
  const int32_t code = controller.code();
  const uint32_t controllers = controller.presentInterfaces(tInterface::controller);
  const uint32_t martens = controller.presentInterfaces(tInterface::marten);
  const bool isRefusedForTheirNumber = code == QUENRA_STATUS_GENERIC_FAILURE;
  if (isRefusedForTheirNumber && controllers > 1) {
    return tooMany(controllers, "controller", "exactly 1 is supported");
  }
  if (isRefusedForTheirNumber && martens > 1) {
    return tooMany(martens, "Marten", "at most 1 is supported");
  }
  // The codes for an SMBIOS table that cannot be read, or that names an unsupported machine.
  // Without a controller interface the same code means that no controller is present.
  const bool isCodeOfTable =
      code == QUENRA_STATUS_NO_CONTROLLER || code == QUENRA_STATUS_NOT_SUPPORTED;
  if (isCodeOfTable && controllers > 0) {
    return {failureOf("the driver replied, but its SMBIOS table is unusable or is not that of a "
                      "supported machine"),
            {{}, "Update the machine's firmware, which makes the table, and the driver."}};
  }
  return {kFailure, {}};
}

void judgeOpening(const tController& controller, std::vector<tWarning>& warnings) {
  const int32_t code = controller.code();
  if (code < 0) {
    const tOpeningFault fault = faultOfOpening(controller);
    throw tCommandError(exitCodeOfOpening(code), fault.fact, code, fault.explanation);
  }
  judgeOpening(code, warnings);
}

}  // namespace nCommandLine
