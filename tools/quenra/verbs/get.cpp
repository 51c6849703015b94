#include <vector>

#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/reading/readingoutput.h"
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
std::string instanceFaultOf(const tController& controller, const tWantedAttribute& wanted) {
  const uint8_t instance = wanted.address.instance;
  if (wanted.row == nullptr || (wanted.row->instances->most == 1 && instance == 0)) {
    return "";
  }
  if (wanted.row->instances->most == 1) {
    return wanted.name() + " has no instances";
  }
  const uint32_t count = countInstances(controller, *wanted.row->instances);
  if (instance < count) {
    return "";
  }
  switch (count) {
    case 0:
      return wanted.name() + " has no instances on this machine";
    case 1:
      return wanted.name() + " has 1 instance (0)";
    default:
      return wanted.name() + " has " + std::to_string(count) + " instances (0 to " +
             std::to_string(count - 1) + ")";
  }
}

tAnswer readWanted(iQuenra& library, const tWantedAttribute& wanted,
                   std::vector<tWarning>& warnings) {
  if (needsNoController(wanted.address)) {
    return {readAttribute(library, 0, wanted.address)};
  }
  const tController controller(library);
  judgeOpening(controller, warnings);
  const tReading reading = controller.read(wanted.address);
  return {reading, reading.state() == tReadingState::notSupported
                       ? instanceFaultOf(controller, wanted)
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
  return "the SMBIOS table lacks a field that decides it";
}

std::string remedyFor(const tWantedAttribute& wanted, const tAnswer& answer) {
  if (answer.reading.state() == tReadingState::notAvailable) {
    return wanted.address.which == tInterface::marten ? "Leave out the Marten interface." : "";
  }
  return answer.instanceFault.empty() || wanted.row->instances->most > 1
             ? "Run 'quenra info' to list what this machine has."
             : "Leave out the instance.";
}

tCommandError errorOf(const tWantedAttribute& wanted, const tAnswer& answer) {
  const tReading& reading = answer.reading;
  const tExitCode exitCode = exitCodeOf(reading);
  switch (reading.state()) {
    case tReadingState::notSupported:
      return {exitCode,
              answer.instanceFault.empty() ? wanted.label() + " is not supported on this machine"
                                           : answer.instanceFault,
              reading.code, tSiteExplanation{{}, remedyFor(wanted, answer)}};
    case tReadingState::notAvailable:
      return {exitCode, wanted.label() + " is not available: " + absenceOf(wanted.address),
              reading.code,
              tSiteExplanation{"The interface is not present, or the field that decides the value "
                               "cannot be read.",
                               remedyFor(wanted, answer)}};
    default:
      return {exitCode, "cannot read " + wanted.label(), reading.code};
  }
}

void printDocument(std::ostream& stream, const tWantedAttribute& wanted, const tReading& reading,
                   const std::vector<tWarning>& warnings) {
  tJsonDocument document("get", exitCodeOf(reading), warnings);
  document.beginObject("attribute");
  writeReading(document, wanted.row, reading);
  document.endObject();
  document.writeTo(stream);
}

void printValue(const tStreams& streams, const tWantedAttribute& wanted, const tReading& reading) {
  streams.out << (streams.outIsTerminal ? shownValue(wanted.row, reading.value)
                                        : plainValue(reading.value))
              << '\n';
}

}  // namespace

tExitCode runGet(const tArguments& arguments, const tVerbContext& context) {
  const tWantedAttribute wanted = attributeToRead(arguments);
  std::vector<tWarning> warnings;
  const tAnswer answer = readWanted(context.ports.library, wanted, warnings);
  const tReading& reading = answer.reading;
  if (reading.code > 0) {
    warnings.push_back({"reading " + wanted.label(), reading.code});
  }
  const tExitCode exitCode = exitCodeOf(reading);
  if (exitCode != tExitCode::done && exitCode != tExitCode::notSupported) {
    throw errorOf(wanted, answer);
  }
  printWarnings(context.streams.error, warnings);
  if (exitCode == tExitCode::notSupported) {
    printError(context.streams.error, errorOf(wanted, answer));
  }
  if (context.json) {
    printDocument(context.streams.out, wanted, reading, warnings);
  } else if (exitCode == tExitCode::done) {
    printValue(context.streams, wanted, reading);
  }
  return exitCode;
}

}  // namespace nCommandLine
