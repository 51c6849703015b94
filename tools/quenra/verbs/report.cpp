// The verb that writes a report about this machine.
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "tools/quenra/firmware/files.h"
#include "tools/quenra/output/tjsondocument.h"
#include "tools/quenra/report/reportfacts.h"
#include "tools/quenra/verbs/chosenmachine.h"
#include "tools/quenra/verbs/verbs.h"

namespace nCommandLine {
namespace {

std::string twoDigits(unsigned number) {
  return (number < 10 ? "0" : "") + std::to_string(number);
}

// "2026-03-01 14:05 UTC"
std::string timeText(std::chrono::system_clock::time_point time) {
  namespace nTime = std::chrono;
  const auto days = nTime::floor<nTime::days>(time);
  const nTime::year_month_day date(days);
  const nTime::hh_mm_ss clock(nTime::floor<nTime::minutes>(time - days));
  return std::to_string(static_cast<int>(date.year())) + "-" +
         twoDigits(static_cast<unsigned>(date.month())) + "-" +
         twoDigits(static_cast<unsigned>(date.day())) + " " +
         twoDigits(static_cast<unsigned>(clock.hours().count())) + ":" +
         twoDigits(static_cast<unsigned>(clock.minutes().count())) + " UTC";
}

std::unique_ptr<tReportPlan> readPlan(const tArguments& arguments) {
  const auto path = arguments.optional(nWords::kImageOption);
  if (!path) {
    return nullptr;
  }
  auto plan = std::make_unique<tReportPlan>(*path, readFile(*path));
  if (plan->image.sections.empty()) {
    throw notAnImage(*path, plan->image);
  }
  return plan;
}

// The terminals of a capture; their use at the time is not part of it.
std::vector<tTerminal> terminalsOf(const nCapture::tMachineRecord& record) {
  std::vector<tTerminal> terminals;
  for (const nCapture::tTerminalRecord& recorded : record.terminals.terminals) {
    tTerminal terminal;
    terminal.name = recorded.name;
    terminal.visibility = recorded.visibility;
    terminal.busType = recorded.busType;
    terminal.busLine = recorded.busLine.value_or(tTerminal::kNoBusLine);
    terminals.push_back(std::move(terminal));
  }
  return terminals;
}

tReportFacts gather(const tArguments& arguments, const tPorts& ports) {
  tChosenMachine machine(arguments, ports);
  if (const nCapture::tMachineRecord* const record = machine.record()) {
    return gatherReport({machine.library(), machine.updateFacts(), nullptr, terminalsOf(*record)},
                        {"the capture " + arguments.text(nWords::kFrom)}, readPlan(arguments));
  }
  return gatherReport({ports.library, ports.updateFacts, &ports.routing},
                      {"this machine on " + timeText(std::chrono::system_clock::now()),
                       arguments.has(nWords::kHolders)},
                      readPlan(arguments));
}

}  // namespace

tExitCode runReport(const tArguments& arguments, const tVerbContext& context) {
  const std::string path = arguments.text(nWords::kFile);
  const bool replaces = arguments.has(nWords::kForce);
  if (!replaces && fileExists(path)) {
    // Before the machine is read; writing fails again if the file appears meanwhile.
    throw tCommandError(tExitCode::failure, "cannot write '" + path + "': the file exists",
                        std::nullopt, "Add --force to replace it.");
  }
  const tReportFacts facts = gather(arguments, context.ports);
  writeFile(path, reportPage(facts), replaces ? tExistingFile::replace : tExistingFile::keep);
  if (context.json) {
    tJsonDocument document("report", tExitCode::done);
    document.text("path", path);
    document.beginArray("reported");
    for (const tReportWarning& warning : facts.warnings) {
      document.textItem(warning.fact);
    }
    document.endArray();
    document.writeTo(context.streams.out);
  } else {
    context.streams.out << "report: " << countOf(facts.warnings.size(), "warning") << '\n';
  }
  return tExitCode::done;
}

}  // namespace nCommandLine
