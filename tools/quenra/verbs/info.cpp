// The verbs that read the complete machine, and that let the library test itself.
#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tools/commandline/argumenttext.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/output/table.h"
#include "tools/quenra/reading/reading.h"
#include "tools/quenra/reading/tcontroller.h"
#include "tools/quenra/tables/attributetable.h"
#include "tools/quenra/verbs/chosenmachine.h"
#include "tools/quenra/verbs/verbs.h"

namespace nCommandLine {
namespace {

// ---- info ----

using tMachine = std::vector<tAttributeReadings>;
using tSubjects = std::vector<const tSubjectRow*>;

const tSubjectRow* subjectNamed(const std::string& text) {
  const auto subject = std::ranges::find(kSubjects, comparableName(text), &tSubjectRow::key);
  if (subject == kSubjects.end()) {
    std::vector<std::string_view> keys;
    std::ranges::transform(kSubjects, std::back_inserter(keys), &tSubjectRow::key);
    throw tUsageError(
        "unknown subject '" + text + "'",
        "Use " + alternatives(std::vector<std::string>(keys.begin(), keys.end())) + ".",
        suggest(text, keys));
  }
  return *subject;
}

// The requested subjects in the order of the table; all without the option.
tSubjects subjectsOf(const tArguments& arguments) {
  std::set<const tSubjectRow*> requested;
  for (const std::string& word : arguments.all(nWords::kSubject)) {
    requested.insert(subjectNamed(word));
  }
  tSubjects subjects;
  std::ranges::copy_if(kSubjects, std::back_inserter(subjects), [&](const tSubjectRow* subject) {
    return requested.empty() || requested.contains(subject);
  });
  return subjects;
}

bool hasInstances(const tAttributeRow& row) noexcept {
  return row.instances->maximum > 1;
}

// "memory-size[1]" for an attribute with instances, "firmware-version[BIOS]" for one with a value
// per interface.
std::string labelOf(const tAttributeRow& row, const tReading& reading) {
  std::string label(row.name);
  if (row.perInterface) {
    return label + (reading.address.which == tInterface::marten ? "[Marten]" : "[BIOS]");
  }
  return hasInstances(row) ? label + "[" + std::to_string(reading.address.instance) + "]" : label;
}

template <class Visitor>
void forEachReading(const tMachine& machine, Visitor visit) {
  for (const tAttributeReadings& attribute : machine) {
    for (const tReading& reading : attribute.readings) {
      visit(*attribute.row, reading);
    }
  }
}

void addWarnings(const tMachine& machine, std::vector<tWarning>& warnings) {
  forEachReading(machine, [&warnings](const tAttributeRow& row, const tReading& reading) {
    if (reading.code > 0) {
      warnings.push_back({"reading " + labelOf(row, reading), reading.code});
    }
  });
}

// Returns one error per failure code, naming all attributes that failed with it.
std::vector<tCommandError> errorsOf(const tMachine& machine) {
  std::map<int32_t, std::string> failed;
  forEachReading(machine, [&failed](const tAttributeRow& row, const tReading& reading) {
    if (reading.state() == tReadingState::failed) {
      std::string& labels = failed[reading.code];
      labels += (labels.empty() ? "" : ", ") + labelOf(row, reading);
    }
  });
  std::vector<tCommandError> errors;
  errors.reserve(failed.size());
  for (const auto& [code, labels] : failed) {
    errors.emplace_back(tExitCode::failure, "cannot read " + labels, code);
  }
  return errors;
}

void printTable(const tStreams& streams, const tMachine& machine) {
  tTable table;
  const tSubjectRow* subject = nullptr;
  forEachReading(machine, [&](const tAttributeRow& row, const tReading& reading) {
    if (row.subject != subject) {
      subject = row.subject;
      table.addHeading(subject->title);
    }
    table.addRow({"  " + labelOf(row, reading), shownReading(&row, reading)},
                 reading.state() != tReadingState::value);
  });
  table.write(streams.out, tStyle(streams.outTakesStyles));
}

void writeSubject(tJsonDocument& document, const tSubjectRow& subject, const tMachine& machine) {
  document.beginObject();
  document.text("subject", subject.key);
  document.text("title", subject.title);
  document.beginArray("attributes");
  forEachReading(machine, [&](const tAttributeRow& row, const tReading& reading) {
    if (row.subject == &subject) {
      document.beginObject();
      writeReading(document, &row, reading);
      document.endObject();
    }
  });
  document.endArray();
  document.endObject();
}

void printDocument(std::ostream& stream, const tSubjects& subjects, const tMachine& machine,
                   tExitCode exitCode, const std::vector<tWarning>& warnings) {
  tJsonDocument document("info", exitCode, warnings);
  document.beginArray("subjects");
  for (const tSubjectRow* const subject : subjects) {
    writeSubject(document, *subject, machine);
  }
  document.endArray();
  document.writeTo(stream);
}

// ---- self-test ----

int32_t runTest(iQuenra& library, std::vector<tWarning>& warnings) {
  const tController controller(library);
  checkOpening(controller, warnings);
  const int32_t code = controller.selfTest();
  if (code < 0) {
    throw tCommandError(tExitCode::failure, "the self-test failed", code);
  }
  if (code > 0) {
    warnings.push_back({"the self-test", code});
  }
  return code;
}

void printSelfTest(std::ostream& stream, int32_t code, const std::vector<tWarning>& warnings) {
  tJsonDocument document("self-test", tExitCode::done, warnings);
  document.beginObject("selfTest");
  document.truth("passed", true);
  document.status("status", code);
  document.endObject();
  document.writeTo(stream);
}

}  // namespace

tExitCode runInfo(const tArguments& arguments, const tVerbContext& context) {
  const tSubjects subjects = subjectsOf(arguments);
  std::vector<tWarning> warnings;
  tChosenMachine chosen(arguments, context.ports);
  const tController controller(chosen.library());
  checkOpening(controller, warnings);
  const tMachine machine = readMachine(controller, subjects);
  addWarnings(machine, warnings);
  printWarnings(context.streams.error, warnings);

  const std::vector<tCommandError> errors = errorsOf(machine);
  for (const tCommandError& error : errors) {
    printError(context.streams.error, error);
  }
  const tExitCode exitCode = errors.empty() ? tExitCode::done : tExitCode::failure;
  if (context.json) {
    printDocument(context.streams.out, subjects, machine, exitCode, warnings);
  } else {
    printTable(context.streams, machine);
  }
  return exitCode;
}

tExitCode runSelfTest(const tArguments& /*arguments*/, const tVerbContext& context) {
  std::vector<tWarning> warnings;
  const int32_t code = runTest(context.ports.library, warnings);
  printWarnings(context.streams.error, warnings);
  if (context.json) {
    printSelfTest(context.streams.out, code, warnings);
  } else {
    context.streams.out << "self-test: passed\n";
  }
  return tExitCode::done;
}

}  // namespace nCommandLine
