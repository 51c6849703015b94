#include "tools/quenra/update/updatemachine.h"

#include "quenra_attributes.h"

namespace nCommandLine {
namespace {

std::optional<std::string> textOf(const tReading& reading) {
  const auto* const text = std::get_if<std::string>(&reading.value);
  const bool isPresent = reading.state() == tReadingState::value && text != nullptr;
  return isPresent ? std::optional(*text) : std::nullopt;
}

bool hasMarten(const tReading& interfaces) {
  return interfaces.state() == tReadingState::value &&
         (std::get<uint32_t>(interfaces.value) & QUENRA_SELECTOR_MARTEN) != 0;
}

}  // namespace

std::optional<std::string> tUpdateMachine::biosVersion() const {
  return textOf(bios);
}
std::optional<std::string> tUpdateMachine::martenVersion() const {
  return hasMarten ? textOf(marten) : std::nullopt;
}

bool tUpdateMachine::awaitsRestart() const {
  return martenVersion() == kRestartMarker;
}

tUpdateMachine readUpdateMachine(const tController& controller) {
  return {controller.read({QUENRA_ATTRIBUTE_FIRMWARE_UPDATE_SUPPORT}),
          hasMarten(controller.read({QUENRA_ATTRIBUTE_INTERFACES_PRESENT})),
          controller.read({QUENRA_ATTRIBUTE_FIRMWARE_VERSION, 0, tInterface::controller}),
          controller.read({QUENRA_ATTRIBUTE_FIRMWARE_VERSION, 0, tInterface::marten})};
}

}  // namespace nCommandLine
