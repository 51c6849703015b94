#include <algorithm>
#include <optional>
#include <vector>

#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/output/table.h"
#include "tools/quenra/reading/reading.h"
#include "tools/quenra/reading/tcontroller.h"
#include "tools/quenra/verbs/attributeargument.h"
#include "tools/quenra/verbs/verbs.h"

namespace nCommandLine {
namespace {

// True for the only attribute that is readable without an open controller.
bool needsNoController(const tAttributeAddress& address) noexcept {
  return address.id() == QUENRA_ATTRIBUTE_DEVICE_PATH;
}

// A reading; `instanceFault` explains an instance that the machine does not have.
struct tAnswer {
  tAttributeArgument argument;
  tReading reading;
  std::string instanceFault = {};
};
using tAnswers = std::vector<tAnswer>;

// "memory-size has 3 instances (0 to 2)"; empty if the machine has the instance.
std::string instanceFaultOf(const tController& controller, const tAttributeArgument& argument) {
  const uint8_t instance = argument.address.instance;
  if (argument.row == nullptr || (argument.row->instances->maximum == 1 && instance == 0)) {
    return "";
  }
  if (argument.row->instances->maximum == 1) {
    return argument.name() + " has no instances";
  }
  const uint32_t count = countInstances(controller, *argument.row->instances);
  if (instance < count) {
    return "";
  }
  switch (count) {
    case 0:
      return argument.name() + " has no instances on this machine";
    case 1:
      return argument.name() + " has 1 instance (0)";
    default:
      return argument.name() + " has " + std::to_string(count) + " instances (0 to " +
             std::to_string(count - 1) + ")";
  }
}

tAnswer readAnswer(const tController& controller, const tAttributeArgument& argument) {
  const tReading reading = controller.read(argument.address);
  return {
      argument, reading,
      reading.state() == tReadingState::notSupported ? instanceFaultOf(controller, argument) : ""};
}

// Opens the controller unless no attribute needs it.
tAnswers readAnswers(iQuenra& library, const std::vector<tAttributeArgument>& attributes,
                     std::vector<tWarning>& warnings) {
  tAnswers answers;
  std::optional<tController> controller;
  for (const tAttributeArgument& argument : attributes) {
    if (needsNoController(argument.address)) {
      answers.push_back({argument, readAttribute(library, 0, argument.address)});
      continue;
    }
    if (!controller) {
      controller.emplace(library);
      checkOpening(*controller, warnings);
    }
    answers.push_back(readAnswer(*controller, argument));
  }
  for (const tAnswer& answer : answers) {
    if (answer.reading.code > 0) {
      warnings.push_back({"reading " + answer.argument.label(), answer.reading.code});
    }
  }
  return answers;
}

tExitCode exitCodeOf(const tReading& reading) noexcept {
  switch (reading.state()) {
    case tReadingState::value:
      return tExitCode::done;
    case tReadingState::notSupported:
      return tExitCode::notSupported;
    case tReadingState::notAvailable:
      return needsNoController(reading.address) ? tExitCode::noController : tExitCode::notSupported;
    case tReadingState::failed:
      break;
  }
  return tExitCode::failure;
}

// The reason that a reading is not available.
std::string absenceOf(const tAttributeAddress& address) {
  if (needsNoController(address)) {
    return "no controller interface is present";
  }
  if (address.which == tInterface::marten) {
    return address.instance == 0 ? "the machine has no Marten interface"
                                 : "the Marten interface has instance 0 only";
  }
  return "the SMBIOS table lacks a field that determines it";
}

std::string remedyFor(const tAnswer& answer) {
  const tAttributeArgument& argument = answer.argument;
  if (answer.reading.state() == tReadingState::notAvailable) {
    return argument.address.which == tInterface::marten ? "Leave out the Marten interface." : "";
  }
  return answer.instanceFault.empty() || argument.row->instances->maximum > 1
             ? "Run 'quenra info' to list what this machine has."
             : "Leave out the instance.";
}

tCommandError errorOf(const tAnswer& answer) {
  const tAttributeArgument& argument = answer.argument;
  const tReading& reading = answer.reading;
  const tExitCode exitCode = exitCodeOf(reading);
  switch (reading.state()) {
    case tReadingState::notSupported:
      return {exitCode,
              answer.instanceFault.empty() ? argument.label() + " is not supported on this machine"
                                           : answer.instanceFault,
              reading.code, tSiteExplanation{{}, remedyFor(answer)}};
    case tReadingState::notAvailable:
      return {exitCode, argument.label() + " is not available: " + absenceOf(argument.address),
              reading.code,
              tSiteExplanation{"The interface is not present, or the field that determines the "
                               "value cannot be read.",
                               remedyFor(answer)}};
    case tReadingState::value:
    case tReadingState::failed:
      break;
  }
  return {exitCode, "cannot read " + argument.label(), reading.code};
}

// The exit code of the first reading that failed.
tExitCode exitCodeOf(const tAnswers& answers) noexcept {
  const auto failed = std::ranges::find_if(
      answers, [](const tAnswer& answer) { return exitCodeOf(answer.reading) != tExitCode::done; });
  return failed == answers.end() ? tExitCode::done : exitCodeOf(failed->reading);
}

void writeAnswer(tJsonDocument& document, const tAnswer& answer) {
  writeReading(document, answer.argument.row, answer.reading);
  document.endObject();
}

void printDocument(std::ostream& stream, const tAnswers& answers,
                   const std::vector<tWarning>& warnings) {
  tJsonDocument document("get", exitCodeOf(answers), warnings);
  if (answers.size() == 1) {
    document.beginObject("attribute");
    writeAnswer(document, answers.front());
  }
  document.beginArray("readings");
  for (const tAnswer& answer : answers) {
    document.beginObject();
    writeAnswer(document, answer);
  }
  document.endArray();
  document.writeTo(stream);
}

void printTable(const tStreams& streams, const tAnswers& answers) {
  tTable table;
  for (const tAnswer& answer : answers) {
    table.addRow({answer.argument.label(), shownReading(answer.argument.row, answer.reading)},
                 answer.reading.state() != tReadingState::value);
  }
  table.write(streams.out, tStyle(streams.outTakesStyles));
}

// A line for each value: line N belongs to the name N, also after one that cannot be read.
void printValues(std::ostream& stream, const tAnswers& answers) {
  for (const tAnswer& answer : answers) {
    const bool hasValue = answer.reading.state() == tReadingState::value;
    stream << (hasValue ? plainValue(answer.reading.value) : "") << '\n';
  }
}

void print(const tStreams& streams, const tAnswers& answers) {
  const tAnswer& first = answers.front();
  if (answers.size() > 1 && streams.outIsTerminal) {
    printTable(streams, answers);
  } else if (answers.size() > 1) {
    printValues(streams.out, answers);
  } else if (first.reading.state() == tReadingState::value) {
    streams.out << (streams.outIsTerminal ? shownValue(first.argument.row, first.reading.value)
                                          : plainValue(first.reading.value))
                << '\n';
  }
}

}  // namespace

tExitCode runGet(const tArguments& arguments, const tVerbContext& context) {
  std::vector<tWarning> warnings;
  const tAnswers answers =
      readAnswers(context.ports.library, parseAttributesToRead(arguments), warnings);
  const tExitCode exitCode = exitCodeOf(answers);
  if (answers.size() == 1 && exitCode != tExitCode::done && exitCode != tExitCode::notSupported) {
    throw errorOf(answers.front());
  }
  printWarnings(context.streams.error, warnings);
  for (const tAnswer& answer : answers) {
    if (exitCodeOf(answer.reading) != tExitCode::done) {
      printError(context.streams.error, errorOf(answer));
    }
  }
  if (context.json) {
    printDocument(context.streams.out, answers, warnings);
  } else {
    print(context.streams, answers);
  }
  return exitCode;
}

}  // namespace nCommandLine
