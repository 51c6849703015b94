#include "tools/quenra/reading/reading.h"

namespace nCommandLine {

std::string_view interfaceName(tInterface which) noexcept {
  switch (which) {
    case tInterface::controller:
      return "controller";
    case tInterface::marten:
      return "marten";
    case tInterface::both:
      return "both";
    case tInterface::byDefault:
      break;
  }
  return "default";
}

std::string_view stateName(tReadingState state) noexcept {
  switch (state) {
    case tReadingState::value:
      return "value";
    case tReadingState::notSupported:
      return "notSupported";
    case tReadingState::notAvailable:
      return "notAvailable";
    case tReadingState::failed:
      break;
  }
  return "failed";
}

tReadingState tReading::state() const noexcept {
  if (code >= 0) {
    return tReadingState::value;
  }
  switch (code) {
    case QUENRA_STATUS_NOT_SUPPORTED:
      return tReadingState::notSupported;
    case QUENRA_STATUS_NO_CONTROLLER:
      return tReadingState::notAvailable;
    default:
      return tReadingState::failed;
  }
}

}  // namespace nCommandLine
