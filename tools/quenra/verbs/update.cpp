#include "tools/quenra/firmware/files.h"
#include "tools/quenra/firmware/firmwareimage.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/output/streams.h"
#include "tools/quenra/reading/tcontroller.h"
#include "tools/quenra/tables/statustable.h"
#include "tools/quenra/update/updateplan.h"
#include "tools/quenra/update/updaterun.h"
#include "tools/quenra/verbs/chosenmachine.h"
#include "tools/quenra/verbs/updatedocuments.h"
#include "tools/quenra/verbs/verbs.h"

namespace nCommandLine {
namespace {

tUpdateOptions optionsOf(const tArguments& arguments) {
  const tUpdateOptions options{arguments.has(nWords::kOnlyNewer), arguments.has(nWords::kForce),
                               arguments.has(nWords::kAllowAnyPath)};
  if (options.force && !options.onlyNewer) {
    throw tUsageError("--force has no meaning without --only-newer", "Leave --force out.", {});
  }
  if (arguments.has(nWords::kFrom) && !arguments.has(nWords::kPlan)) {
    throw tUsageError("--from has no meaning without --plan",
                      "Add --plan: a captured machine cannot be updated.");
  }
  return options;
}

tUpdateRequest parseUpdateRequest(const tArguments& arguments) {
  tUpdateRequest request{arguments.text(nWords::kImage), optionsOf(arguments), {}, {}};
  request.bytes = readFile(request.path);
  request.image = inspectImage(request.bytes);
  if (request.image.sections.empty()) {
    throw notAnImage(request.path, request.image);
  }
  return request;
}

// ---- The plan ----

tExitCode exitCodeOf(int32_t openingCode, const std::vector<tObstacle>& obstacles) {
  if (openingCode < 0) {
    return exitCodeOfOpening(openingCode);
  }
  if (obstacles.empty()) {
    return tExitCode::done;
  }
  const auto& code = obstacles.front().code;
  return code ? exitCodeOfUpdate(*code) : tExitCode::failure;
}

// The obstacle for a controller that cannot be opened.
tObstacle obstacleOf(const tController& controller) {
  const tOpeningFailure fault = explainOpeningFailure(controller);
  const std::string& remedy = fault.explanation.advice;
  return {fault.fact,
          remedy.empty() ? std::string(explainStatus(controller.code()).advice) : remedy,
          controller.code()};
}

tPlanAnswer plan(const tController& controller, iUpdateFacts& facts,
                 const tUpdateRequest& request) {
  tPlanAnswer answer{request, {}, {}, {}, {}};
  if (controller.code() >= 0) {
    checkOpening(controller.code(), answer.warnings);
    answer.machine = readUpdateMachine(controller);
  }
  answer.sections = planSections(request.image, answer.machineOrNull(), request.options.onlyNewer);
  answer.obstacles =
      findObstacles({answer.machineOrNull(), answer.sections, request.options}, facts);
  if (controller.code() < 0) {
    answer.obstacles.insert(answer.obstacles.begin(), obstacleOf(controller));
  }
  answer.exitCode = exitCodeOf(controller.code(), answer.obstacles);
  return answer;
}

std::string conclusionOf(const tPlanAnswer& answer) {
  if (!answer.obstacles.empty()) {
    return countOf(answer.obstacles.size(), "obstacle");
  }
  return changesAnything(answer.sections) ? "no obstacle was found" : "nothing to do";
}

tExitCode runPlan(const tUpdateRequest& request, tChosenMachine& machine,
                  const tVerbContext& context) {
  const tController controller(machine.library());
  const tPlanAnswer answer = plan(controller, machine.updateFacts(), request);
  if (context.json) {
    printPlanDocument(context, answer);
  } else {
    printPlan(context.streams, answer.machineOrNull(), answer.sections, "What would be done");
    context.streams.out << conclusionOf(answer) << std::endl;
  }
  printWarnings(context.streams.error, answer.warnings);
  printRemarks(context.streams.error, answer.sections, request.options);
  printObstacles(context.streams.error, answer.obstacles);
  return answer.exitCode;
}

// ---- An update that is not started ----

tExitCode reject(const tPlanAnswer& answer, const tVerbContext& context) {
  printWarnings(context.streams.error, answer.warnings);
  printObstacles(context.streams.error, answer.obstacles);
  context.streams.error << "quenra: the update was not started; nothing was changed\n";
  if (context.json) {
    printRejection(context, answer);
  }
  return answer.exitCode;
}

// ---- An update that fails ----

std::string factOf(const tPlanAnswer& answer, const tUpdateFailure& failure) {
  if (!failure.section) {
    return failure.fact;
  }
  const auto& section = answer.request.image.sections[*failure.section - 1];
  return "section " + std::to_string(*failure.section) + ", " +
         std::string(section.header.targetDevice) + ": " + failure.fact;
}

tExitCode fail(int32_t code, const tPlanAnswer& answer, const tVerbContext& context) {
  const tUpdateResult result =
      failureOf(code, answer.sections, *answer.machine, context.ports.updateFacts);
  const tUpdateFailure& failure = *result.failure;
  const tCommandError error(exitCodeOfUpdate(code), factOf(answer, failure), code,
                            failure.explanation);
  printError(context.streams.error, error);
  printResults(context.streams.error, answer.sections, result);
  if (context.json) {
    printFailure(context, answer, error, result);
  }
  return error.exitCode();
}

// ---- An update that succeeds, or has nothing to do ----

// The update ends here: the library would mark the Marten as updated without sending anything.
tExitCode reportNothingToDo(const tPlanAnswer& answer, const tVerbContext& context) {
  printWarnings(context.streams.error, answer.warnings);
  if (context.json) {
    printUpdate(context, answer, "nothing-to-do", std::chrono::milliseconds(0));
  } else {
    context.streams.out << "nothing to do\n";
  }
  return tExitCode::done;
}

tExitCode apply(const tController& controller, tPlanAnswer& answer, const tVerbContext& context) {
  tStreams& streams = context.streams;
  const tUpdateRequest& request = answer.request;
  tProgress progress("updating", streams, context.ports.interruption, context.json);
  reportStart(context, progress, answer);
  const int32_t code =
      progress.run([&] { return controller.update(request.bytes, request.options.onlyNewer); });
  reportEnd(context, code);
  if (code < 0) {
    return fail(code, answer, context);
  }
  streams.appliedChange = "the firmware is updated";
  if (code > 0) {
    answer.warnings.push_back({"the update", code});
  }
  printWarnings(streams.error, answer.warnings);
  if (context.json) {
    printUpdate(context, answer, "done", progress.elapsed());
  } else {
    streams.out << "done after " << elapsedText(progress.elapsed()) << '\n';
    printResults(streams.out, answer.sections, successOf(answer.sections));
  }
  return tExitCode::done;
}

tExitCode carryOut(const tUpdateRequest& request, const tVerbContext& context) {
  tStreams& streams = context.streams;
  const tController controller(context.ports.library);
  tPlanAnswer answer = plan(controller, context.ports.updateFacts, request);
  reportPlan(context, answer);
  if (!answer.obstacles.empty()) {
    return reject(answer, context);
  }
  if (!context.json) {
    printPlan(streams, answer.machineOrNull(), answer.sections, "What will be done");
  }
  printRemarks(streams.error, answer.sections, request.options);
  if (!changesAnything(answer.sections)) {
    return reportNothingToDo(answer, context);
  }
  if (!context.json) {
    streams.out << "updating, which can take minutes: do not switch the machine off" << std::endl;
  }
  if (!streams.out.flush()) {
    // Without output the program could not report the result.
    streams.error << "quenra: the update was not started: its output cannot be written\n";
    return tExitCode::failure;
  }
  return apply(controller, answer, context);
}

}  // namespace

tExitCode runUpdate(const tArguments& arguments, const tVerbContext& context) {
  const tUpdateRequest request = parseUpdateRequest(arguments);
  if (arguments.has(nWords::kPlan)) {
    tChosenMachine machine(arguments, context.ports);
    return runPlan(request, machine, context);
  }
  // Held from before the plan is made: another update would change the machine that it describes.
  const tHeldUpdateLock lock(context.ports.updateLock, context.ports.interruption,
                             context.streams.error, !arguments.has(nWords::kNoWait),
                             [&] { reportWaiting(context); });
  return carryOut(request, context);
}

}  // namespace nCommandLine
