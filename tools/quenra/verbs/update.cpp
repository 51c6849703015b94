#include "tools/quenra/verbs/update.h"

#include "tools/quenra/firmware/files.h"
#include "tools/quenra/firmware/sectionoutput.h"
#include "tools/quenra/grammar/words.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/output/elapsedtext.h"
#include "tools/quenra/update/planoutput.h"
#include "tools/quenra/update/tprogress.h"
#include "tools/quenra/verbs/opening.h"

namespace nCommandLine {
namespace {

struct tWantedUpdate {
  std::string path;
  bool onlyNewer;
  std::string bytes;
  tFirmwareImage image;
};

tWantedUpdate wantedUpdate(const tArguments& arguments) {
  tWantedUpdate wanted{arguments.text(nWords::kImage), arguments.has(nWords::kOnlyNewer), {}, {}};
  wanted.bytes = readFile(wanted.path);
  wanted.image = inspectImage(wanted.bytes);
  if (wanted.image.sections.empty()) {
    throw notAnImage(wanted.path, wanted.image);
  }
  return wanted;
}

void writeWanted(tJsonDocument& document, const tWantedUpdate& wanted) {
  document.text("path", wanted.path);
  document.truth("onlyNewer", wanted.onlyNewer);
}

// ---- What would be done ----

struct tPlanAnswer {
  std::vector<tWarning> warnings;
  std::optional<tUpdateMachine> machine;
  std::vector<tPlannedSection> sections;
  std::vector<tObstacle> obstacles;
  tExitCode exitCode = tExitCode::done;

  [[nodiscard]] const tUpdateMachine* machineOrNull() const noexcept {
    return machine ? &*machine : nullptr;
  }
};

tExitCode exitCodeOf(int32_t openingCode, const std::vector<tObstacle>& obstacles) {
  if (openingCode < 0) {
    return exitCodeOfOpening(openingCode);
  }
  return obstacles.empty() ? tExitCode::done : exitCodeOfUpdate(obstacles.front().code);
}

tPlanAnswer plan(const tPorts& ports, const tWantedUpdate& wanted) {
  tPlanAnswer answer;
  const tController controller(ports.library);
  if (controller.code() >= 0) {
    judgeOpening(controller.code(), answer.warnings);
    answer.machine = readUpdateMachine(controller);
  }
  answer.sections = planSections(wanted.image, answer.machineOrNull(), wanted.onlyNewer);
  answer.obstacles =
      findObstacles({controller.code(), answer.machineOrNull(), answer.sections, wanted.onlyNewer},
                    ports.updateFacts);
  answer.exitCode = exitCodeOf(controller.code(), answer.obstacles);
  return answer;
}

void printPlanDocument(std::ostream& stream, const tWantedUpdate& wanted,
                       const tPlanAnswer& answer) {
  tJsonDocument document("update-plan", answer.exitCode, answer.warnings);
  writeWanted(document, wanted);
  writeInstalled(document, answer.machineOrNull());
  writePlan(document, answer.sections);
  writeObstacles(document, answer.obstacles);
  document.writeTo(stream);
}

tExitCode runPlan(const tWantedUpdate& wanted, const tVerbContext& context) {
  const tPlanAnswer answer = plan(context.ports, wanted);
  if (context.json) {
    printPlanDocument(context.streams.out, wanted, answer);
  } else {
    printPlan(context.streams, answer.machineOrNull(), answer.sections, "What would be done");
    context.streams.out << (answer.obstacles.empty()
                                ? "nothing stands in the way"
                                : countOf(answer.obstacles.size(), "reason") + " against it")
                        << std::endl;
  }
  printWarnings(context.streams.error, answer.warnings);
  printObstacles(context.streams.error, answer.obstacles);
  return answer.exitCode;
}

// ---- The update ----

void judgeUpdate(int32_t code, std::vector<tWarning>& warnings) {
  if (code < 0) {
    throw tCommandError(exitCodeOfUpdate(code), "the update failed", code,
                        "'quenra update --plan' tells everything that is in its way.");
  }
  if (code > 0) {
    warnings.push_back({"the update", code});
  }
}

void printDocument(std::ostream& stream, const tWantedUpdate& wanted, const tUpdateMachine& machine,
                   const std::vector<tPlannedSection>& sections, std::chrono::milliseconds elapsed,
                   const std::vector<tWarning>& warnings) {
  tJsonDocument document("update", tExitCode::done, warnings);
  writeWanted(document, wanted);
  writeInstalled(document, &machine);
  writePlan(document, sections);
  document.number("elapsedMilliseconds", elapsed.count());
  document.writeTo(stream);
}

tExitCode runWanted(const tWantedUpdate& wanted, const tVerbContext& context) {
  tStreams& streams = context.streams;
  std::vector<tWarning> warnings;
  const tController controller(context.ports.library);
  judgeOpening(controller.code(), warnings);
  const tUpdateMachine machine = readUpdateMachine(controller);
  const auto sections = planSections(wanted.image, &machine, wanted.onlyNewer);
  if (!context.json) {
    printPlan(streams, &machine, sections, "What will be done");
    streams.out << "updating, which can take minutes: leave the machine on" << std::endl;
  }
  if (!streams.out.flush()) {
    // Nothing could report its end.
    streams.error << "quenra: the update was not started: its output cannot be written\n";
    return tExitCode::failure;
  }
  tProgress progress("updating", streams, context.ports.interruption, context.json);
  judgeUpdate(progress.run([&] { return controller.update(wanted.bytes, wanted.onlyNewer); }),
              warnings);
  streams.machineChanged = true;
  printWarnings(streams.error, warnings);
  if (context.json) {
    printDocument(streams.out, wanted, machine, sections, progress.elapsed(), warnings);
  } else {
    streams.out << "done after " << elapsedText(progress.elapsed()) << '\n';
    printApplied(streams.out, sections);
  }
  return tExitCode::done;
}

}  // namespace

tExitCode runUpdate(const tArguments& arguments, const tVerbContext& context) {
  const tWantedUpdate wanted = wantedUpdate(arguments);
  return arguments.has(nWords::kPlan) ? runPlan(wanted, context) : runWanted(wanted, context);
}

}  // namespace nCommandLine
