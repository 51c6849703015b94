#include "tools/quenra/verbs/updatedocuments.h"

#include "tools/quenra/output/tjsondocument.h"

namespace nCommandLine {
namespace {

constexpr std::string_view kVerb = "update";

// Writes the members that begin the documents of plans and of updates.
void writeRequest(tJsonDocument& document, const tPlanAnswer& answer) {
  document.text("path", answer.request.path);
  document.truth("onlyNewer", answer.request.options.onlyNewer);
  writeInstalled(document, answer.machineOrNull());
}

void writePlanned(tJsonDocument& document, const tPlanAnswer& answer) {
  writeRequest(document, answer);
  writePlan(document, answer.sections);
  writeObstacles(document, answer.obstacles);
}

// The document reports the first obstacle as its error.
tCommandError errorOf(const tPlanAnswer& answer) {
  const tObstacle& first = answer.obstacles.front();
  if (!first.code) {
    return {answer.exitCode, first.fact, std::nullopt, first.remedy};
  }
  return {answer.exitCode, first.fact, *first.code,
          tSiteExplanation{first.fact + ".", first.remedy}};
}

void writeFailure(tJsonDocument& document, const tPlanAnswer& answer,
                  const tUpdateFailure& failure) {
  document.beginObject("failure");
  document.text("fact", failure.fact);
  if (failure.section) {
    document.number("section", static_cast<int64_t>(*failure.section));
    document.text("device",
                  answer.request.image.sections[*failure.section - 1].header.targetDevice);
  } else {
    document.null("section");
    document.null("device");
  }
  document.status("status", failure.code);
  if (failure.line == 0) {
    document.null("line");
  } else {
    document.number("line", failure.line);
  }
  document.endObject();
}

}  // namespace

// ---- Documents ----

void printPlanDocument(const tVerbContext& context, const tPlanAnswer& answer) {
  tJsonDocument document("update-plan", answer.exitCode, answer.warnings);
  writePlanned(document, answer);
  context.print(document);
}

void printRejection(const tVerbContext& context, const tPlanAnswer& answer) {
  tJsonDocument document("error", answer.exitCode, answer.warnings);
  writeError(document, errorOf(answer), kVerb);
  document.beginObject(kVerb);
  document.truth("started", false);
  writePlanned(document, answer);
  document.endObject();
  context.print(document);
}

void printFailure(const tVerbContext& context, const tPlanAnswer& answer,
                  const tCommandError& error, const tUpdateResult& result) {
  tJsonDocument document("error", error.exitCode(), answer.warnings);
  writeError(document, error, kVerb);
  document.beginObject(kVerb);
  document.truth("started", true);
  writeRequest(document, answer);
  writePlan(document, answer.sections, result);
  writeFailure(document, answer, *result.failure);
  document.endObject();
  context.print(document);
}

void printUpdate(const tVerbContext& context, const tPlanAnswer& answer, std::string_view outcome,
                 std::chrono::milliseconds elapsed) {
  tJsonDocument document(kVerb, tExitCode::done, answer.warnings);
  writeRequest(document, answer);
  writePlan(document, answer.sections, successOf(answer.sections));
  document.number("elapsedMilliseconds", elapsed.count());
  document.text("outcome", outcome);
  context.print(document);
}

// ---- Events ----

void reportWaiting(const tVerbContext& context) {
  if (context.events != nullptr) {
    context.events->write("waiting", [](tJsonDocument&) {});
  }
}

void reportPlan(const tVerbContext& context, const tPlanAnswer& answer) {
  if (context.events != nullptr) {
    context.events->write("plan", [&](tJsonDocument& line) { writePlanned(line, answer); });
  }
}

// The library applies all sections in one call and reports no step of it.
void reportStart(const tVerbContext& context, tProgress& progress, const tPlanAnswer& answer) {
  tEventLines* const events = context.events;
  if (events == nullptr) {
    return;
  }
  events->write("update-started", [&](tJsonDocument& line) {
    line.beginArray("sections");
    for (const tPlannedSection& planned : answer.sections) {
      if (nQUENRA1400::changesMachine(planned.action)) {
        line.numberItem(static_cast<int64_t>(planned.number));
      }
    }
    line.endArray();
  });
  progress.setReport([events](std::chrono::milliseconds elapsed) {
    events->write("update-running", [elapsed](tJsonDocument& line) {
      line.number("runningMilliseconds", elapsed.count());
    });
  });
}

void reportEnd(const tVerbContext& context, int32_t code) {
  if (context.events != nullptr) {
    context.events->write("update-ended",
                          [code](tJsonDocument& line) { line.status("status", code); });
  }
}

}  // namespace nCommandLine
