#include "tools/quenra/routing/routingdevice.h"

#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/reading/readattribute.h"

namespace nCommandLine {
namespace {

tExitCode exitCodeOf(const tReading& reading) noexcept {
  return reading.state() == tReadingState::notAvailable   ? tExitCode::noController
         : reading.state() == tReadingState::notSupported ? tExitCode::notSupported
                                                          : tExitCode::failure;
}

}  // namespace

std::string routingDevice(iQuenra& library) {
  const tReading reading = readAttribute(library, 0, {QUENRA_ATTRIBUTE_DEVICE_PATH});
  if (reading.state() != tReadingState::value) {
    throw tCommandError(exitCodeOf(reading), "cannot find the trigger routing device",
                        reading.code);
  }
  return std::get<std::string>(reading.value);
}

}  // namespace nCommandLine
