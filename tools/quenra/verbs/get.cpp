#include "tools/quenra/verbs/get.h"

#include <vector>

#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/output/readingjson.h"
#include "tools/quenra/output/valuetext.h"
#include "tools/quenra/reading/readattribute.h"
#include "tools/quenra/reading/tcontroller.h"
#include "tools/quenra/verbs/attributeargument.h"
#include "tools/quenra/verbs/opening.h"

namespace nCommandLine {
namespace {

// The one attribute that is there even where no controller can be opened.
bool needsNoController(const tAttributeAddress& address) noexcept {
  return address.id() == QUENRA_ATTRIBUTE_DEVICE_PATH;
}

tReading readWanted(iQuenra& library, const tAttributeAddress& address,
                    std::vector<tWarning>& warnings) {
  if (needsNoController(address)) {
    return readAttribute(library, 0, address);
  }
  const tController controller(library);
  judgeOpening(controller.code(), warnings);
  return controller.read(address);
}

tExitCode exitCodeOf(const tReading& reading) noexcept {
  switch (reading.state()) {
    case tReadingState::value:
      return tExitCode::done;
    case tReadingState::notSupported:
      return tExitCode::notSupported;
    case tReadingState::unavailable:
      return needsNoController(reading.address) ? tExitCode::noController : tExitCode::notSupported;
    case tReadingState::failed:
      break;
  }
  return tExitCode::failure;
}

tCommandError errorOf(const tWantedAttribute& wanted, const tReading& reading) {
  const tExitCode exitCode = exitCodeOf(reading);
  const bool absent = exitCode == tExitCode::notSupported;
  if (absent && reading.state() == tReadingState::unavailable) {
    // The controller is open: the catalogue's explanation of the code does not apply.
    return {exitCode, wanted.label() + " is not available on this machine", reading.code,
            tSiteExplanation{
                "The interface is not present, or the field that decides the answer cannot "
                "be read.",
                "Look at the interfaces of this machine with 'quenra get "
                "interfaces-present'."}};
  }
  return {exitCode,
          wanted.label() + (absent ? " is not supported on this machine" : " cannot be read"),
          reading.code};
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
  const tReading reading = readWanted(context.ports.library, wanted.address, warnings);
  if (reading.code > 0) {
    warnings.push_back({"reading " + wanted.label(), reading.code});
  }
  const tExitCode exitCode = exitCodeOf(reading);
  if (exitCode != tExitCode::done && exitCode != tExitCode::notSupported) {
    throw errorOf(wanted, reading);
  }
  printWarnings(context.streams.error, warnings);
  if (exitCode == tExitCode::notSupported) {
    printError(context.streams.error, errorOf(wanted, reading));
  }
  if (context.json) {
    printDocument(context.streams.out, wanted, reading, warnings);
  } else if (exitCode == tExitCode::done) {
    printValue(context.streams, wanted, reading);
  }
  return exitCode;
}

}  // namespace nCommandLine
