#include "tools/quenra/update/updateplan.h"

#include <algorithm>

#include "quenra_status.h"
#include "tools/quenra/output/streams.h"
#include "tools/quenra/tables/statustable.h"

namespace nCommandLine {
namespace {

using tPlan = std::vector<tPlannedSection>;
using tIterator = tPlan::const_iterator;

constexpr std::string_view kResultNames[] = {"applied", "handed-over", "failed", "not-applied",
                                             "unknown"};

bool isSent(const tPlannedSection& planned) noexcept {
  return planned.action == tSectionAction::sendToController ||
         planned.action == tSectionAction::sendToMarten;
}

tSectionResult resultOfSuccess(const tPlannedSection& planned) noexcept {
  switch (planned.action) {
    case tSectionAction::sendToController:
    case tSectionAction::sendToMarten:
    case tSectionAction::writeFile:
      return tSectionResult::applied;
    case tSectionAction::installPackage:
      return tSectionResult::handedOver;
    case tSectionAction::nothing:
    case tSectionAction::leaveOut:
    case tSectionAction::refuse:
    case tSectionAction::keepBack:
      break;
  }
  return tSectionResult::notApplied;
}

std::vector<tSectionResult> allOf(const tPlan& plan, tSectionResult result) {
  std::vector<tSectionResult> results;
  for (const tPlannedSection& planned : plan) {
    const bool isPlanned = resultOfSuccess(planned) != tSectionResult::notApplied;
    results.push_back(isPlanned ? result : tSectionResult::notApplied);
  }
  return results;
}

tSiteExplanation explanationOf(int32_t code) {
  const tStatusExplanation explanation = explainStatus(code);
  return {std::string(explanation.meaning), std::string(explanation.advice)};
}

// When a package cannot be installed, the library removes all files of the image.
tUpdateResult failureOfTool(int32_t code, const tPlan& plan, tIterator package,
                            const tDriverStoreTool& tool) {
  tUpdateResult result = successOf(plan);
  const auto failed = static_cast<size_t>(package - plan.begin());
  for (size_t i = 0; i < plan.size(); ++i) {
    const bool isRemoved = plan[i].action == tSectionAction::writeFile;
    if (i > failed || isRemoved) {
      result.sections[i] = tSectionResult::notApplied;
    }
  }
  result.sections[failed] = tSectionResult::failed;
  const tObstacle fault = obstacleOf(tool).value_or(toolNotStarted({}));
  result.failure = tUpdateFailure{
      fault.fact, {fault.fact + ".", fault.remedy}, code, fault.line, package->number};
  return result;
}

// This code always arises before the first section is sent.
tUpdateResult failureOfFiles(int32_t code, const tPlan& plan, iUpdateFacts& facts) {
  const std::string folder = facts.temporaryFolder();
  const std::error_code reason = facts.temporaryFolderFailure();
  tUpdateFailure failure;
  failure.fact = "cannot write the files of the image below '" + folder + "'";
  if (reason) {
    failure.fact += ": " + reasonOf(reason);
  }
  failure.explanation = {
      "The update writes files into a new folder of the temporary directory.",
      "Free space in the temporary directory, and grant this user access to it."};
  failure.code = code;
  return {allOf(plan, tSectionResult::notApplied), failure};
}

// For codes that do not identify the step that failed.
tUpdateResult failureAnywhere(int32_t code, const tPlan& plan) {
  return {allOf(plan, tSectionResult::unknown),
          tUpdateFailure{"the update failed", explanationOf(code), code}};
}

// A code of the driver results from a section that is sent, or from the Marten's version marker,
// which the library writes first.
tUpdateResult failureOfDriver(int32_t code, const tPlan& plan, const tUpdateMachine& machine) {
  tUpdateFailure failure;
  failure.explanation = explanationOf(code);
  failure.code = code;
  const auto sent = std::ranges::count_if(plan, isSent);
  if (sent != 1) {
    failure.fact = sent == 0 ? "the Marten does not accept its version marker"
                             : "one of the sections to be sent failed; the library does not report "
                               "which";
    return {allOf(plan, tSectionResult::unknown), failure};
  }
  const auto section = std::ranges::find_if(plan, isSent);
  failure.fact = section->action == tSectionAction::sendToMarten
                     ? "the Marten interface does not accept the section"
                 : machine.hasMarten
                     ? "the controller interface does not accept the section, or the Marten its "
                       "version marker"
                     : "the controller interface does not accept the section";
  failure.section = section->number;
  tUpdateResult result{allOf(plan, tSectionResult::unknown), failure};
  result.sections[static_cast<size_t>(section - plan.begin())] = tSectionResult::failed;
  return result;
}

}  // namespace

std::string_view resultName(tSectionResult result) noexcept {
  return kResultNames[static_cast<size_t>(result)];
}

tUpdateResult successOf(const tPlan& plan) {
  tUpdateResult result;
  std::ranges::transform(plan, std::back_inserter(result.sections), resultOfSuccess);
  return result;
}

tUpdateResult failureOf(int32_t code, const tPlan& plan, const tUpdateMachine& machine,
                        iUpdateFacts& facts) {
  const auto package =
      std::ranges::find(plan, tSectionAction::installPackage, &tPlannedSection::action);
  const tDriverStoreTool tool =
      package == plan.end() ? tDriverStoreTool{} : facts.driverStoreTool();
  const bool isTool =
      package != plan.end() && (code == QUENRA_STATUS_INVALID_IMAGE ||
                                (code == QUENRA_STATUS_UPDATE_ENVIRONMENT && !tool.exists));
  if (isTool) {
    return failureOfTool(code, plan, package, tool);
  }
  if (code == QUENRA_STATUS_UPDATE_ENVIRONMENT) {
    return failureOfFiles(code, plan, facts);
  }
  const bool isOfLibrary =
      code <= QUENRA_STATUS_BUFFER_TOO_SMALL && code >= QUENRA_STATUS_DRIVE_PROTECTED;
  return isOfLibrary ? failureAnywhere(code, plan) : failureOfDriver(code, plan, machine);
}

}  // namespace nCommandLine
