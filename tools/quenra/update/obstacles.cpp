#include "tools/quenra/update/updateplan.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <utility>

#include "quenra_status.h"
#include "source/user/failuresites.h"
#include "source/user/update/driverpackage.h"
#include "tools/quenra/firmware/firmwareimage.h"
#include "tools/quenra/output/streams.h"
#include "tools/quenra/tables/statustable.h"

namespace nCommandLine {
namespace {

namespace nUpdateSites = nQUENRA1400::nUpdateSites;
using nQUENRA1400::tFailureSite;

// The fault of each step in determining the encryption of drive C:.
struct tProtectionStep {
  const tFailureSite& site;
  std::string_view fact;
};
constexpr tProtectionStep kProtectionSteps[] = {
    {nUpdateSites::kComNotInitialised, "COM cannot be started"},
    {nUpdateSites::kComSecurityRefused, "the security of COM cannot be set up"},
    {nUpdateSites::kNoLocator, "the management service is not available"},
    {nUpdateSites::kNamespaceNotReached,
     "the management service has no volume encryption, or denies this user access"},
    {nUpdateSites::kQueryFailed,
     "the management service does not return the state of the protection"},
};

constexpr std::string_view kWindowsFolder = "C:\\Windows";
constexpr std::string_view kTool = nQUENRA1400::kDriverStoreTool;

// Not a copy: updates of the system would not replace it, and its owner could change it.
constexpr const char* kMakeLink =
    "As an administrator, run 'mklink /d C:\\Windows\\Sysnative C:\\Windows\\System32': a link, "
    "never a copy of the tool.";

bool isWindowsFolder(std::string_view path) {
  return std::ranges::equal(path, kWindowsFolder, [](unsigned char one, unsigned char other) {
    return std::tolower(one) == std::tolower(other);
  });
}

using tObstacles = std::vector<tObstacle>;

tObstacle obstacleAt(const tFailureSite& site, std::string fact, std::string remedy) {
  return {std::move(fact), std::move(remedy), site.code, site.location.line};
}

std::string adviceFor(int32_t code) {
  return std::string(explainStatus(code).advice);
}

void addEligibility(const tReading& takesUpdates, tObstacles& obstacles) {
  if (takesUpdates.state() != tReadingState::value) {
    obstacles.push_back(
        obstacleAt(nUpdateSites::kEligibilityUnknown,
                   "the SMBIOS table does not show whether the machine supports firmware updates",
                   "Update the firmware with the tools of the machine's manufacturer."));
  } else if (std::get<uint32_t>(takesUpdates.value) == 0) {
    obstacles.push_back(obstacleAt(
        nUpdateSites::kNotEligible,
        "the machine does not support firmware updates: firmware-update-support is 0",
        "Check the machine's setup for a lock of its firmware; some machines cannot be unlocked."));
  }
}

void addSection(const tPlannedSection& planned, tObstacles& obstacles) {
  if (planned.action != tSectionAction::refuse) {
    return;
  }
  if (const auto& fault = planned.section->fault) {
    obstacles.push_back({faultText(*planned.section), std::string(fault->remedy), fault->code,
                         fault->line, planned.number});
  } else {
    obstacles.push_back(
        obstacleAt(*planned.refusal, "the section is for a Marten, and this machine has none",
                   "Use an image without this section, or install the Marten's driver."));
    obstacles.back().section = planned.number;
  }
}

void addFileName(const tPlannedSection& planned, tObstacles& obstacles) {
  for (const tSectionRemark& remark : planned.section->remarks) {
    if (remark.isRefused) {
      obstacles.push_back({remark.fact, remark.remedy, std::nullopt, 0, planned.number});
    }
  }
}

// Until the restart the machine reports the versions of the old firmware, or none: comparing with
// them could replace newer firmware with older.
void addPendingRestart(const tUpdateSituation& situation, tObstacles& obstacles) {
  const tUpdateOptions& options = situation.options;
  if (options.onlyNewer && !options.force && situation.machine != nullptr &&
      situation.machine->awaitsRestart()) {
    obstacles.push_back({"an update awaits a restart: the Marten reports version " +
                             std::string(nQUENRA1400::kIncompleteVersion) +
                             ", and --only-newer cannot compare until the restart",
                         "Restart the machine and run the update again. With --force the "
                         "comparison counts the Marten as the oldest version.",
                         std::nullopt});
  }
}

// The Marten's version is required for a comparison only.
void addVersion(const tUpdateSituation& situation, tObstacles& obstacles) {
  const auto goesToMarten = [](const tPlannedSection& planned) {
    return planned.intended == tSectionAction::sendToMarten;
  };
  if (situation.options.onlyNewer && situation.machine != nullptr && situation.machine->hasMarten &&
      !situation.machine->martenVersion() && std::ranges::any_of(situation.plan, goesToMarten)) {
    const int32_t code = situation.machine->marten.code;
    obstacles.push_back({"the installed version of the Marten cannot be read",
                         "Leave out --only-newer. " + adviceFor(code), code});
  }
}

void addTool(const tUpdateSituation& situation, iUpdateFacts& facts, tObstacles& obstacles) {
  const auto package =
      std::ranges::find(situation.plan, tSectionAction::installPackage, &tPlannedSection::intended);
  if (package == situation.plan.end()) {
    return;
  }
  if (const auto obstacle = obstacleOf(facts.driverStoreTool())) {
    obstacles.push_back(*obstacle);
    obstacles.back().section = package->number;
  }
  const std::string folder = facts.temporaryFolder();
  if (folder.find(' ') != std::string::npos) {
    obstacles.push_back(
        {"the temporary directory '" + folder +
             "' has a blank, which splits the command line of the driver-store tool",
         "Set the environment variable TMP to a directory without blanks.", std::nullopt, 0,
         package->number});
  }
}

}  // namespace

tObstacle toolNotStarted(const std::error_code& reason) {
  return obstacleAt(
      nUpdateSites::kToolNotStarted,
      "the driver-store tool could not be started" + (reason ? ": " + reasonOf(reason) : ""),
      "Check that " + std::string(kTool) + " is the system's own tool. " + kMakeLink);
}

std::optional<tObstacle> obstacleOf(const tDriveProtection& drive) {
  if (drive.code < 0) {
    const auto* const step = std::ranges::find(
        kProtectionSteps, drive.line,
        [](const tProtectionStep& candidate) { return candidate.site.location.line; });
    std::string fact = "the encryption state of drive C: is unknown";
    if (step != std::end(kProtectionSteps)) {
      fact.append(": ").append(step->fact);
    }
    return tObstacle{fact,
                     "Run the update as an administrator, on a system with its management "
                     "service running and the feature of drive encryption installed.",
                     drive.code, drive.line};
  }
  return drive.isOn ? std::optional(obstacleAt(nUpdateSites::kDriveEncrypted,
                                               "drive C: is encrypted, and the protection is on",
                                               adviceFor(nUpdateSites::kDriveEncrypted.code)))
                    : std::nullopt;
}

std::optional<tObstacle> obstacleOf(const tDriverStoreTool& tool) {
  if (!isWindowsFolder(tool.windowsFolder)) {
    return tObstacle{
        "Windows is installed in '" + tool.windowsFolder + "', and the library starts " +
            std::string(kTool),
        "Install the driver package with the tool of this Windows, and use an image without it.",
        std::nullopt};
  }
  if (!tool.exists) {
    return obstacleAt(
        nUpdateSites::kToolMissing,
        "the system has no " + std::string(kTool) + " to install a driver package with", kMakeLink);
  }
  if (!tool.isSystemOwned) {
    const std::string owner = tool.owner.empty() ? "an unknown account" : "'" + tool.owner + "'";
    return tObstacle{"the owner of " + std::string(kTool) + " is " + owner +
                         ", not SYSTEM, Administrators or TrustedInstaller",
                     std::string("Remove the tool: its owner could replace it. ") + kMakeLink,
                     std::nullopt};
  }
  return tool.startFailure ? std::optional(toolNotStarted(tool.startFailure)) : std::nullopt;
}

tObstacles findObstacles(const tUpdateSituation& situation, iUpdateFacts& facts) {
  tObstacles obstacles;
  if (const auto obstacle = obstacleOf(facts.driveProtection())) {
    obstacles.push_back(*obstacle);
  }
  if (situation.machine != nullptr) {
    addEligibility(situation.machine->takesUpdates, obstacles);
  }
  for (const tPlannedSection& planned : situation.plan) {
    addSection(planned, obstacles);
    if (!situation.options.allowAnyPath) {
      addFileName(planned, obstacles);
    }
  }
  addPendingRestart(situation, obstacles);
  addVersion(situation, obstacles);
  addTool(situation, facts, obstacles);
  return obstacles;
}

tExitCode exitCodeOfUpdate(int32_t code) noexcept {
  const bool isNotSupported =
      code == QUENRA_STATUS_NOT_SUPPORTED || code == QUENRA_STATUS_NO_CONTROLLER;
  return isNotSupported ? tExitCode::notSupported : code < 0 ? tExitCode::failure : tExitCode::done;
}

}  // namespace nCommandLine
