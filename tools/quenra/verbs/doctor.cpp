// The verb that checks everything that a working controller and an update require. Each check reports the
// verdict of the code that the other verbs use.
#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "quenra_version.h"
#include "tools/commandline/utf8text.h"
#include "tools/quenra/output/table.h"
#include "tools/quenra/reading/tcontroller.h"
#include "tools/quenra/tables/statustable.h"
#include "tools/quenra/update/updateplan.h"
#include "tools/quenra/verbs/verbs.h"

namespace nCommandLine {
namespace {

enum class tCheckResult : uint8_t {
  ok,
  warning,  // the controller works, and an update or something else does not
  failed,   // the controller cannot be used
  skipped,  // an earlier check failed, or the machine lacks the object of the check
};

constexpr std::string_view kResultNames[] = {"ok", "warning", "failed", "skipped"};

std::string_view nameOf(tCheckResult result) noexcept {
  return kResultNames[static_cast<size_t>(result)];
}

struct tCheck {
  std::string_view name;
  tCheckResult result;
  std::string fact;
  std::string remedy = {};
  std::optional<int32_t> code = std::nullopt;
};

// A remedy, or the advice of the status table without one.
std::string remedyOr(const std::string& remedy, int32_t code) {
  return remedy.empty() ? std::string(explainStatus(code).advice) : remedy;
}

tCheck failed(std::string_view name, const tController& controller, const tOpeningFailure& fault) {
  return {name, tCheckResult::failed, fault.fact,
          remedyOr(fault.explanation.advice, controller.code()), controller.code()};
}

// ---- The checks ----

tCheck checkLibrary(iInstallation& installation) {
  constexpr std::string_view kName = "library";
  const std::string version = installation.libraryVersion();
  if (version == QUENRA_VERSION) {
    return {kName, tCheckResult::ok, "quenra.dll " + version};
  }
  return {kName, tCheckResult::warning,
          "quenra.dll has " + (version.empty() ? "no version" : "version " + version) +
              ", quenra.exe has version " QUENRA_VERSION,
          "Install library and command line from one package."};
}

std::string countText(uint32_t count, std::string_view kind) {
  return (count == 0 ? "no " : std::to_string(count) + " ") + std::string(kind) + " interface" +
         (count > 1 ? "s" : "");
}

tCheck checkInterfaces(const tController& controller, const tOpeningFailure& fault) {
  constexpr std::string_view kName = "interfaces";
  const uint32_t controllers = controller.presentInterfaces(tInterface::controller);
  if (fault.cause == tOpeningCause::interfaces) {
    return failed(kName, controller, fault);
  }
  if (controllers == 0) {
    return {kName, tCheckResult::failed, "no controller interface is present",
            "Install the driver of the controller, and enable its device in the system's device "
            "manager."};
  }
  return {kName, tCheckResult::ok,
          countText(controllers, "controller") + ", " +
              countText(controller.presentInterfaces(tInterface::marten), "Marten")};
}

tCheck checkReading(const tController& controller) {
  constexpr std::string_view kName = "driver";
  const tReading reading = controller.read({QUENRA_ATTRIBUTE_DRIVER_SETTING_1});
  if (reading.state() == tReadingState::failed) {
    return {kName, tCheckResult::failed, "cannot read driver-setting-1",
            std::string(explainStatus(reading.code).advice), reading.code};
  }
  const int32_t warning = std::max(controller.code(), reading.code);
  if (warning > 0) {
    return {kName, tCheckResult::warning, "the driver reported a warning",
            std::string(explainStatus(warning).advice), warning};
  }
  return {kName, tCheckResult::ok, "the controller was opened, and the driver replied to a read"};
}

tCheck checkDriver(const tController& controller, const tOpeningFailure& fault) {
  constexpr std::string_view kName = "driver";
  if (controller.code() >= 0) {
    return checkReading(controller);
  }
  if (fault.cause == tOpeningCause::table) {
    return {kName, tCheckResult::ok, "the driver replied"};
  }
  const bool isSkipped = fault.cause == tOpeningCause::interfaces ||
                         controller.presentInterfaces(tInterface::controller) == 0;
  return isSkipped ? tCheck{kName, tCheckResult::skipped, "no controller interface can be opened"}
                   : failed(kName, controller, fault);
}

constexpr const char* kNotOpen = "the controller is not open";

tCheck checkTable(const tController& controller, const tOpeningFailure& fault) {
  constexpr std::string_view kName = "table";
  if (fault.cause == tOpeningCause::table) {
    return failed(kName, controller, fault);
  }
  if (controller.code() < 0) {
    return {kName, tCheckResult::skipped, kNotOpen};
  }
  const tReading product = controller.read({QUENRA_ATTRIBUTE_PRODUCT_NAME});
  const auto* const name = std::get_if<std::string>(&product.value);
  if (product.state() != tReadingState::value || name == nullptr || name->empty()) {
    return {kName, tCheckResult::warning,
            "the SMBIOS table has no product name: it may be malformed",
            "Update the machine's firmware, which provides the table.", product.code};
  }
  return {kName, tCheckResult::ok, "the SMBIOS table is that of a " + *name};
}

tCheck checkRights(iInstallation& installation) {
  constexpr std::string_view kName = "rights";
  return installation.isAdministrator()
             ? tCheck{kName, tCheckResult::ok, "the account is an administrator"}
             : tCheck{kName, tCheckResult::warning,
                      "the account is not an administrator, as a firmware update requires",
                      "Run updates from an elevated command prompt."};
}

tCheck checkObstacle(std::string_view name, const std::optional<tObstacle>& obstacle,
                     const char* fact) {
  return obstacle
             ? tCheck{name, tCheckResult::warning, obstacle->fact, obstacle->remedy, obstacle->code}
             : tCheck{name, tCheckResult::ok, fact};
}

tCheck checkPendingUpdate(const tController& controller) {
  constexpr std::string_view kName = "pending-update";
  if (controller.code() < 0) {
    return {kName, tCheckResult::skipped, kNotOpen};
  }
  const tUpdateMachine machine = readUpdateMachine(controller);
  if (!machine.hasMarten) {
    return {kName, tCheckResult::skipped, "the machine has no Marten, which marks updates"};
  }
  if (machine.awaitsRestart()) {
    return {kName, tCheckResult::warning, pendingRestartText(), "Restart the machine."};
  }
  if (!machine.martenVersion()) {
    return {kName, tCheckResult::warning, "the version of the Marten cannot be read",
            std::string(explainStatus(machine.marten.code).advice), machine.marten.code};
  }
  return {kName, tCheckResult::ok, "no update awaits a restart"};
}

std::vector<tCheck> checkEverything(const tController& controller, const tPorts& ports) {
  const tOpeningFailure fault =
      controller.code() < 0 ? explainOpeningFailure(controller) : tOpeningFailure{};
  return {checkLibrary(ports.installation),
          checkInterfaces(controller, fault),
          checkDriver(controller, fault),
          checkTable(controller, fault),
          checkRights(ports.installation),
          checkObstacle("encryption", obstacleOf(ports.updateFacts.driveProtection()),
                        "drive C: is not protected by encryption"),
          checkObstacle("driver-store-tool", obstacleOf(ports.updateFacts.driverStoreTool()),
                        "the system's tool for driver packages can be started"),
          checkPendingUpdate(controller)};
}

// ---- Output ----

std::string failedNames(const std::vector<tCheck>& checks) {
  std::string names;
  for (const tCheck& check : checks) {
    if (check.result == tCheckResult::failed) {
      names.append(names.empty() ? "" : ", ").append(check.name);
    }
  }
  return names;
}

void printTable(const tStreams& streams, const std::vector<tCheck>& checks) {
  tTable table;
  const auto addDetail = [&table](const std::string& text) { table.addRow({"", "", text}); };
  for (const tCheck& check : checks) {
    table.addRow(
        {std::string(nameOf(check.result)), std::string(check.name), printableText(check.fact)},
        check.result == tCheckResult::skipped);
    if (check.code && *check.code != 0) {
      addDetail(codeAndConstant(*check.code));
    }
    if (!check.remedy.empty()) {
      addDetail("Advice: " + printableText(check.remedy));
    }
  }
  table.write(streams.out, tStyle(streams.outTakesStyles));
}

void printDocument(std::ostream& stream, const std::vector<tCheck>& checks, tExitCode exitCode) {
  tJsonDocument document("doctor", exitCode);
  document.beginArray("checks");
  for (const tCheck& check : checks) {
    document.beginObject();
    document.text("check", check.name);
    document.text("result", nameOf(check.result));
    document.text("fact", check.fact);
    document.optionalText("remedy", check.remedy);
    if (check.code && *check.code != 0) {
      document.status("status", *check.code);
    } else {
      document.null("status");
    }
    document.endObject();
  }
  document.endArray();
  document.writeTo(stream);
}

}  // namespace

tExitCode runDoctor(const tArguments& /*arguments*/, const tVerbContext& context) {
  const tController controller(context.ports.library);
  const std::vector<tCheck> checks = checkEverything(controller, context.ports);
  const std::string names = failedNames(checks);
  const tExitCode exitCode = controller.code() < 0 ? exitCodeOfOpening(controller.code())
                             : names.empty()       ? tExitCode::done
                                                   : tExitCode::failure;
  if (context.json) {
    printDocument(context.streams.out, checks, exitCode);
  } else {
    printTable(context.streams, checks);
  }
  if (!names.empty()) {
    context.streams.error << "quenra: failed: " << names << '\n';
  }
  return exitCode;
}

}  // namespace nCommandLine
