// The plan of an update, by the rules of the library; the obstacles to it, of which the library meets only
// the first; and its result.
#ifndef TOOLS_QUENRA_UPDATE_UPDATEPLAN_H
#define TOOLS_QUENRA_UPDATE_UPDATEPLAN_H

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "source/user/update/updateplan.h"
#include "tools/quenra/firmware/firmwareimage.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/output/streams.h"
#include "tools/quenra/output/tjsondocument.h"
#include "tools/quenra/reading/tcontroller.h"
#include "tools/quenra/update/updateports.h"

namespace nCommandLine {

// ---- The plan ----

// The attributes that affect an update.
struct tUpdateMachine {
  tReading takesUpdates;
  bool hasMarten = false;
  tReading bios;    // the installed version
  tReading marten;  // ... if the machine has a Marten

  // Empty if the version cannot be read.
  [[nodiscard]] std::optional<std::string> biosVersion() const;
  [[nodiscard]] std::optional<std::string> martenVersion() const;
  // True if an earlier update still awaits the restart that completes it.
  [[nodiscard]] bool awaitsRestart() const;
};

// "an update awaits a restart: until then the Marten reports version 0.0.0f0"
[[nodiscard]] std::string pendingRestartText();

[[nodiscard]] tUpdateMachine readUpdateMachine(const tController& controller);

using nQUENRA1400::tSectionAction;

struct tUpdateOptions {
  bool onlyNewer = false;
  bool force = false;         // compare versions even if an update awaits a restart
  bool allowAnyPath = false;  // apply file names that are not one plain component
};

// "send-to-marten"
[[nodiscard]] std::string_view actionName(tSectionAction action) noexcept;

struct tPlannedSection {
  size_t number;  // its position in the image, from 1
  const tImageSection* section;
  tSectionAction intended;  // the action if no other section is refused
  tSectionAction action;
  std::string reason;  // why it is not applied, or is applied although not newer; often empty
  const nQUENRA1400::tFailureSite* refusal;  // if the machine lacks the device of the section

  // The remedy for a section that an option leaves out; empty for any other section.
  [[nodiscard]] std::string_view remedy() const noexcept {
    return action == tSectionAction::leaveOut ? "without --only-newer it is applied" : "";
  }
};

// Returns the sections in the order of application, or of the image if one is refused. `machine` is
// null if no controller is open. The result points into `image`.
[[nodiscard]] std::vector<tPlannedSection> planSections(const tFirmwareImage& image,
                                                        const tUpdateMachine* machine,
                                                        bool onlyNewer);

// True if the library would send, install or write anything.
[[nodiscard]] bool changesAnything(const std::vector<tPlannedSection>& plan) noexcept;

// ---- Obstacles ----

struct tObstacle {
  std::string fact;
  std::string remedy;           // a sentence
  std::optional<int32_t> code;  // failure code of the library; none if it continues
  uint32_t line = 0;            // 0 if unknown
  std::optional<size_t> section = std::nullopt;  // its position in the image, from 1
};

// `plan` was made for `machine`, which is null if the controller could not be opened.
struct tUpdateSituation {
  const tUpdateMachine* machine;
  const std::vector<tPlannedSection>& plan;
  tUpdateOptions options;
};

// Returns the obstacles in the order in which the library would meet them.
[[nodiscard]] std::vector<tObstacle> findObstacles(const tUpdateSituation& situation,
                                                   iUpdateFacts& facts);

// The exit code for an update that fails with `code` while the controller is open.
[[nodiscard]] tExitCode exitCodeOfUpdate(int32_t code) noexcept;

// The reason why the encryption of drive C: prevents an update; empty if it does not.
[[nodiscard]] std::optional<tObstacle> obstacleOf(const tDriveProtection& drive);

// The reason why the driver-store tool must not or cannot be started; empty if it can.
[[nodiscard]] std::optional<tObstacle> obstacleOf(const tDriverStoreTool& tool);

// The obstacle of a system that refuses to start the tool. `reason` is clear if it is unknown.
[[nodiscard]] tObstacle toolNotStarted(const std::error_code& reason);

// ---- The result ----

// The library reports one code for all sections; the plan and the state of the machine identify the step
// that failed.
enum class tSectionResult : uint8_t {
  applied,
  handedOver,  // to the driver store, whose result the library does not examine
  failed,
  notApplied,
  unknown,  // the failure does not show how far the update proceeded
};

// "not-applied"
[[nodiscard]] std::string_view resultName(tSectionResult result) noexcept;

struct tUpdateFailure {
  std::string fact;  // the step that failed, with the reason of the system if known
  tSiteExplanation explanation;
  int32_t code = 0;
  uint32_t line = 0;                             // 0 if unknown
  std::optional<size_t> section = std::nullopt;  // its position in the image, from 1
};

struct tUpdateResult {
  std::vector<tSectionResult> sections;  // parallel to the plan
  std::optional<tUpdateFailure> failure;
};

[[nodiscard]] tUpdateResult successOf(const std::vector<tPlannedSection>& plan);

// Precondition: `code` is negative, and `plan` has no refused section.
[[nodiscard]] tUpdateResult failureOf(int32_t code, const std::vector<tPlannedSection>& plan,
                                      const tUpdateMachine& machine, iUpdateFacts& facts);

// ---- Output of plan and result, as text and as JSON ----

// Prints the installed versions, and the action for each section in a column headed `heading`.
void printPlan(const tStreams& streams, const tUpdateMachine* machine,
               const std::vector<tPlannedSection>& plan, std::string_view heading);

// "send to the Marten interface", with the reason of the decision and the remedy, if it has any.
[[nodiscard]] std::string plannedText(const tPlannedSection& planned);

// Prints each obstacle with its code and remedy.
void printObstacles(std::ostream& stream, const std::vector<tObstacle>& obstacles);

// Prints the remarks that are not obstacles.
void printRemarks(std::ostream& stream, const std::vector<tPlannedSection>& plan,
                  const tUpdateOptions& options);

// Prints a line for each section that the plan applies.
void printResults(std::ostream& stream, const std::vector<tPlannedSection>& plan,
                  const tUpdateResult& result);

// Writes the members "installed", "sections" and "obstacles".
void writeInstalled(tJsonDocument& document, const tUpdateMachine* machine);
void writePlan(tJsonDocument& document, const std::vector<tPlannedSection>& plan);
// As above, with the result of each section.
void writePlan(tJsonDocument& document, const std::vector<tPlannedSection>& plan,
               const tUpdateResult& result);
void writeObstacles(tJsonDocument& document, const std::vector<tObstacle>& obstacles);

}  // namespace nCommandLine

#endif
