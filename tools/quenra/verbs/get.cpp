#include <vector>

#include "tools/quenra/output/diagnostics.h"
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
  tReading reading;
  std::string instanceFault = {};
};

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

tAnswer readAnswer(iQuenra& library, const tAttributeArgument& argument,
                   std::vector<tWarning>& warnings) {
  if (needsNoController(argument.address)) {
    return {readAttribute(library, 0, argument.address)};
  }
  const tController controller(library);
  checkOpening(controller, warnings);
  const tReading reading = controller.read(argument.address);
  return {reading, reading.state() == tReadingState::notSupported
                       ? instanceFaultOf(controller, argument)
                       : ""};
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

std::string remedyFor(const tAttributeArgument& argument, const tAnswer& answer) {
  if (answer.reading.state() == tReadingState::notAvailable) {
    return argument.address.which == tInterface::marten ? "Leave out the Marten interface." : "";
  }
  return answer.instanceFault.empty() || argument.row->instances->maximum > 1
             ? "Run 'quenra info' to list what this machine has."
             : "Leave out the instance.";
}

tCommandError errorOf(const tAttributeArgument& argument, const tAnswer& answer) {
  const tReading& reading = answer.reading;
  const tExitCode exitCode = exitCodeOf(reading);
  switch (reading.state()) {
    case tReadingState::notSupported:
      return {exitCode,
              answer.instanceFault.empty() ? argument.label() + " is not supported on this machine"
                                           : answer.instanceFault,
              reading.code, tSiteExplanation{{}, remedyFor(argument, answer)}};
    case tReadingState::notAvailable:
      return {exitCode, argument.label() + " is not available: " + absenceOf(argument.address),
              reading.code,
              tSiteExplanation{"The interface is not present, or the field that determines the "
                               "value cannot be read.",
                               remedyFor(argument, answer)}};
    case tReadingState::value:
    case tReadingState::failed:
      break;
  }
  return {exitCode, "cannot read " + argument.label(), reading.code};
}

void printDocument(std::ostream& stream, const tAttributeArgument& argument,
                   const tReading& reading, const std::vector<tWarning>& warnings) {
  tJsonDocument document("get", exitCodeOf(reading), warnings);
  document.beginObject("attribute");
  writeReading(document, argument.row, reading);
  document.endObject();
  document.writeTo(stream);
}

void printValue(const tStreams& streams, const tAttributeArgument& argument,
                const tReading& reading) {
  streams.out << (streams.outIsTerminal ? shownValue(argument.row, reading.value)
                                        : plainValue(reading.value))
              << '\n';
}

}  // namespace

tExitCode runGet(const tArguments& arguments, const tVerbContext& context) {
  const tAttributeArgument argument = parseAttributeToRead(arguments);
  std::vector<tWarning> warnings;
  const tAnswer answer = readAnswer(context.ports.library, argument, warnings);
  const tReading& reading = answer.reading;
  if (reading.code > 0) {
    warnings.push_back({"reading " + argument.label(), reading.code});
  }
  const tExitCode exitCode = exitCodeOf(reading);
  if (exitCode != tExitCode::done && exitCode != tExitCode::notSupported) {
    throw errorOf(argument, answer);
  }
  printWarnings(context.streams.error, warnings);
  if (exitCode == tExitCode::notSupported) {
    printError(context.streams.error, errorOf(argument, answer));
  }
  if (context.json) {
    printDocument(context.streams.out, argument, reading, warnings);
  } else if (exitCode == tExitCode::done) {
    printValue(context.streams, argument, reading);
  }
  return exitCode;
}

}  // namespace nCommandLine
