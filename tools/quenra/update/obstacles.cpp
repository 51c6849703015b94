#include "tools/quenra/update/obstacles.h"

#include <algorithm>
#include <iterator>

#include "quenra_status.h"
#include "tools/quenra/firmware/sectionoutput.h"
#include "tools/quenra/tables/statustable.h"
#include "tools/quenra/update/driverstore.h"

namespace nCommandLine {
namespace {

constexpr uint32_t kNoMartenLine = 1868;
constexpr uint32_t kEligibilityUnknownLine = 1798;
constexpr uint32_t kNotEligibleLine = 1810;
constexpr uint32_t kProtectedLine = 1787;

// The fault of each step in determining the encryption of drive C:, by the line that reports it.
struct tProtectionStep {
  uint32_t line;
  std::string_view fact;
};
constexpr tProtectionStep kProtectionSteps[] = {
    {2831, "COM cannot be started"},
    {2847, "the security of COM cannot be set up"},
    {2863, "the management service is not there"},
    {2879, "the management service has no volume encryption, or does not let this user ask"},
    {2912, "the management service does not answer the question"},
};

using tObstacles = std::vector<tObstacle>;

std::string adviceFor(int32_t code) {
  return std::string(explainStatus(code).advice);
}

void addDrive(const tDriveProtection& drive, tObstacles& obstacles) {
  if (drive.code < 0) {
    const auto* const step =
        std::ranges::find(kProtectionSteps, drive.line, &tProtectionStep::line);
    std::string fact = "whether drive C: is encrypted cannot be found out";
    if (step != std::end(kProtectionSteps)) {
      fact.append(": ").append(step->fact);
    }
    obstacles.push_back({fact,
                         "Run the update as an administrator, on a system with its management "
                         "service running and the feature of drive encryption installed.",
                         drive.code, drive.line});
  } else if (drive.isOn) {
    obstacles.push_back({"drive C: is encrypted, and the protection is on",
                         adviceFor(QUENRA_STATUS_DRIVE_PROTECTED), QUENRA_STATUS_DRIVE_PROTECTED,
                         kProtectedLine});
  }
}

void addEligibility(const tReading& takesUpdates, tObstacles& obstacles) {
  if (takesUpdates.state() != tReadingState::value) {
    obstacles.push_back({"whether the machine takes firmware cannot be read of its SMBIOS table",
                         "Update the machine's firmware by the means of its maker.",
                         QUENRA_STATUS_NO_CONTROLLER, kEligibilityUnknownLine});
  } else if (std::get<uint32_t>(takesUpdates.value) == 0) {
    obstacles.push_back({"the machine takes no firmware: firmware-update-support is 0",
                         "Look in the machine's setup for a lock of its firmware; some machines "
                         "have none that could be lifted.",
                         QUENRA_STATUS_NOT_SUPPORTED, kNotEligibleLine});
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
    obstacles.push_back({"the section is for a Marten, and this machine has none",
                         "Use an image without this section, or install the Marten's driver.",
                         QUENRA_STATUS_INVALID_IMAGE, kNoMartenLine, planned.number});
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
                             std::string(kRestartMarker) +
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
  if (const auto fault = faultOf(facts.driverStoreTool())) {
    obstacles.push_back({fault->fact, fault->remedy, fault->code, fault->line, package->number});
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

tObstacles findObstacles(const tUpdateSituation& situation, iUpdateFacts& facts) {
  tObstacles obstacles;
  addDrive(facts.driveProtection(), obstacles);
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
