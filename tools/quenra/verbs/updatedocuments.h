// The documents of `quenra update`, and its events.
#ifndef TOOLS_QUENRA_VERBS_UPDATEDOCUMENTS_H
#define TOOLS_QUENRA_VERBS_UPDATEDOCUMENTS_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/quenra/firmware/firmwareimage.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/update/updateplan.h"
#include "tools/quenra/update/updaterun.h"
#include "tools/quenra/verbs/verbs.h"

namespace nCommandLine {

struct tUpdateRequest {
  std::string path;
  tUpdateOptions options;
  std::string bytes;
  tFirmwareImage image;
};

struct tPlanAnswer {
  const tUpdateRequest& request;
  std::vector<tWarning> warnings;
  std::optional<tUpdateMachine> machine;
  std::vector<tPlannedSection> sections;
  std::vector<tObstacle> obstacles;
  tExitCode exitCode = tExitCode::done;

  [[nodiscard]] const tUpdateMachine* machineOrNull() const noexcept {
    return machine ? &*machine : nullptr;
  }
};

// ---- Documents ----

// The plan of --plan.
void printPlanDocument(const tVerbContext& context, const tPlanAnswer& answer);
// An update that was not started because of obstacles.
void printRejection(const tVerbContext& context, const tPlanAnswer& answer);
// An update that failed; `result` has a failure.
void printFailure(const tVerbContext& context, const tPlanAnswer& answer,
                  const tCommandError& error, const tUpdateResult& result);
// An update that succeeded, or had nothing to do.
void printUpdate(const tVerbContext& context, const tPlanAnswer& answer, std::string_view outcome,
                 std::chrono::milliseconds elapsed);

// ---- Events, with --json-lines only ----

void reportWaiting(const tVerbContext& context);
void reportPlan(const tVerbContext& context, const tPlanAnswer& answer);
// Also reports that the update is running, at intervals.
void reportStart(const tVerbContext& context, tProgress& progress, const tPlanAnswer& answer);
void reportEnd(const tVerbContext& context, int32_t code);

}  // namespace nCommandLine

#endif
